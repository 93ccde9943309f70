#include "linux/tray/QtStatusArea.h"

#include <QGuiApplication>
#include <utility>

#include "appkit/NSEvent.h"
#include "appkit/NSMenu.h"
#include "backend/Session.h"
#include "linux/qt/Geometry.h"
#include "linux/tray/IconAnchor.h"

namespace vistrel::tray {

namespace {

using Flags = NSEventModifierFlags;

// The tray hosts hand on no modifiers; the keyboard is asked at the press.
std::uint64_t heldModifiers() {
  const auto held = QGuiApplication::queryKeyboardModifiers();
  std::uint64_t flags = 0;
  if (held & Qt::ShiftModifier) flags |= Flags::kShift;
  if (held & Qt::ControlModifier) flags |= Flags::kControl;
  if (held & Qt::AltModifier) flags |= Flags::kOption;
  if (held & Qt::MetaModifier) flags |= Flags::kCommand;
  return flags;
}

}  // namespace

QtStatusArea::QtStatusArea(backend::Session& session, x11::X11Connection& x11)
    : session_(session), hostMenu_(x11), hosts_([this](TrayHost host) { makeIcon(host); }) {}

QtStatusArea::~QtStatusArea() = default;

// The old one goes first: there are never two.
void QtStatusArea::makeIcon(TrayHost host) {
  hostMenu_.stop();
  icon_.reset();
  icon_ = std::make_unique<TrayIcon>(
      host, [this](auto reason) { pressed(reason); },
      TrayMenu::Handlers{.willOpen = [this] { hostWillOpenMenu(); },
                         .didClose = [this] { tellClosed(); },
                         .chosen = [this](auto item) { tellChosen(std::move(item)); },
                         .isHostMenuSeen = [this] { return hostMenu_.isMenuOnScreen(); }});
  if (menu_) icon_->menu().mirror(menu_);
  update();
}

void QtStatusArea::tellClosed() {
  hostMenu_.stop();
  if (client_) client_->statusMenuDidClose();
}

void QtStatusArea::tellChosen(std::shared_ptr<NSMenuItem> item) {
  if (client_) client_->statusMenuItemChosen(std::move(item));
}

void QtStatusArea::update() {
  if (!icon_) return;
  if (!isShown_) return icon_->hide();
  icon_->show(image_.icon(isHighlighted_ ? TrayImage::Look::Highlighted : TrayImage::Look::Plain));
}

void QtStatusArea::setIcon(const std::string& imagePath) {
  image_ = TrayImage(imagePath);
  isShown_ = true;
  update();
}

void QtStatusArea::hideIcon() {
  isShown_ = false;
  update();
}

void QtStatusArea::setHighlighted(bool isHighlighted) {
  if (std::exchange(isHighlighted_, isHighlighted) != isHighlighted) update();
}

void QtStatusArea::mirrorMenu(std::shared_ptr<NSMenu> menu) {
  menu_ = std::move(menu);
  if (icon_) icon_->menu().mirror(menu_);
}

void QtStatusArea::popUpMenu(std::shared_ptr<NSMenu> menu) {
  popUp_ = std::make_unique<IconMenu>(
      *menu, IconMenu::Handlers{.didClose = [this] { tellClosed(); },
                                .chosen = [this](auto item) { tellChosen(std::move(item)); }});
  popUp_->show(qt::toQt(iconFrame().value_or(Rect{})));
}

void QtStatusArea::dismissMenu() { popUp_.reset(); }

std::optional<Rect> QtStatusArea::iconFrame() {
  if (!icon_ || !isShown_) return std::nullopt;
  const QRect told = icon_->geometry();
  return told.isEmpty() ? guessedFrame_ : std::optional(qt::fromQt(told));
}

void QtStatusArea::pressed(QSystemTrayIcon::ActivationReason reason) {
  switch (reason) {
    case QSystemTrayIcon::Trigger:
    case QSystemTrayIcon::DoubleClick:
      return report(backend::PointerButton::Left);
    case QSystemTrayIcon::MiddleClick:
      return report(backend::PointerButton::Middle);
    case QSystemTrayIcon::Context:
      // Where the menu is on screen this is the press that opened it, and that was told already.
      if (!icon_->menu().native().isVisible()) report(backend::PointerButton::Right);
      return;
    case QSystemTrayIcon::Unknown:
      return;
  }
}

void QtStatusArea::report(backend::PointerButton button) {
  rememberPointer();
  icon_->menu().endShowing();
  if (client_) client_->statusIconPressed(button, heldModifiers());
}

void QtStatusArea::hostWillOpenMenu() {
  rememberPointer();
  if (icon_->menu().isDrawnByHost()) hostMenu_.start([this] { icon_->menu().hostMenuIsGone(); });
  if (client_) client_->statusMenuWillOpen();
}

// A press by the keyboard leaves the pointer anywhere: then the older guess is the better one.
void QtStatusArea::rememberPointer() {
  if (const auto guess = guessIconFrame(session_.pointerLocation(), session_.screens()))
    guessedFrame_ = guess;
}

}  // namespace vistrel::tray
