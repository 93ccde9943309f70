#include "linux/tray/QtStatusArea.h"

#include <QGuiApplication>
#include <utility>

#include "appkit/NSEvent.h"
#include "appkit/NSMenu.h"
#include "backend/Session.h"
#include "linux/DesktopName.h"
#include "linux/qt/Geometry.h"
#include "linux/qt/X11Toolkit.h"
#include "linux/tray/IconAnchor.h"
#include "linux/x11/Requests.h"
#include "linux/x11/StartupSequence.h"

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

QtStatusArea::QtStatusArea(backend::Session& session, x11::X11Connection& x11, HostMessages& messages)
    : session_(session),
      x11_(x11),
      messages_(messages),
      hostMenu_(x11),
      isPointerStale_(x11.isOpen() && x11::isXWayland(x11.get())),
      hosts_([this](TrayHost host) { makeIcon(host); }) {
  messages_.setTokenHandler(
      [&x11](const QString& token) { x11::endStartupSequence(x11, token.toStdString()); });
}

QtStatusArea::~QtStatusArea() { messages_.setTokenHandler({}); }

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
  icon_->setToolTip(toolTip_);
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

void QtStatusArea::setToolTip(const std::string& text) {
  if (std::exchange(toolTip_, text) != text && icon_) icon_->setToolTip(toolTip_);
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
  // A window of Wayland's own gets the focus that the popover had: then Qt would close this menu, too.
  if (isPointerStale_) qt::endFocusOfHidden();
  popUp_->show(qt::toQt(iconFrame().value_or(Rect{})));
}

void QtStatusArea::dismissMenu() { popUp_.reset(); }

std::optional<Rect> QtStatusArea::toldIconFrame() const {
  if (!isShown_ || !icon_) return std::nullopt;
  const QRect told = icon_->geometry();
  return told.isEmpty() ? guessedFrame_ : qt::fromQt(told);
}

std::optional<Rect> QtStatusArea::iconFrame() {
  const auto told = toldIconFrame();
  // Elsewhere the pointer, which the user has in hand, tells more than the end of a panel.
  const bool isAtPanelEnd = isShown_ && !told && !guessedFrame_ && isPointerStale_;
  return isAtPanelEnd ? iconFrameAtPanelEnd(session_.screens()) : told;
}

void QtStatusArea::pressed(QSystemTrayIcon::ActivationReason reason) {
  switch (reason) {
    case QSystemTrayIcon::Trigger:
    case QSystemTrayIcon::DoubleClick:
      return clicked(backend::PointerButton::Left);
    case QSystemTrayIcon::MiddleClick:
      return clicked(backend::PointerButton::Middle);
    case QSystemTrayIcon::Context:
      // Where the menu is on screen this is the press that opened it, and that was told already.
      if (!icon_->menu().native().isVisible()) clicked(backend::PointerButton::Right);
      return;
    case QSystemTrayIcon::Unknown:
      return;
  }
}

// The host has told of the click on the bus; the X server has told of its press before, but the word may lie
// unread.
void QtStatusArea::clicked(backend::PointerButton button) {
  if (x11_.isOpen()) {
    x11_.readEvents();
    x11_.deliver();
  }
  report(button, rememberPress());
}

void QtStatusArea::report(backend::PointerButton button, Point location) {
  icon_->menu().endShowing();
  if (client_) client_->statusIconPressed(button, heldModifiers(), location);
}

bool QtStatusArea::pressIcon(backend::PointerButton button, Point place) {
  const auto frame = toldIconFrame();
  if (!frame || !frame->contains(place)) return false;
  report(button, place);
  return true;
}

// Where a cover takes the presses beside a menu of ours, the host gets none of them.
bool QtStatusArea::tellsOfReleases() {
  const bool isCovered = isPointerStale_ && x11::isOwned(x11_.get(), "_NET_WM_CM_S0");
  return hosts_.known() == TrayHost::Bus && !isCovered;
}

void QtStatusArea::hostWillOpenMenu() {
  rememberPress();
  if (icon_->menu().isDrawnByHost()) hostMenu_.start([this] { icon_->menu().hostMenuIsGone(); });
  if (client_) client_->statusMenuWillOpen();
}

std::optional<Rect> QtStatusArea::framePressed() {
  const auto told = messages_.takePlace();
  const auto screens = session_.screens();
  if (!isPointerStale_) return guessIconFrame(session_.pointerLocation(), screens);
  if (!told) return std::nullopt;
  const auto inPixels = guessIconFrame(qt::fromQt(qt::fromPixels(*told)), screens);
  const auto inPoints = guessIconFrame(qt::fromQt(*told), screens);
  // KDE's panel speaks of pixels of the X server, all others of points.
  if (desktop::isDesktop("KDE")) return inPixels ? inPixels : inPoints;
  return inPoints ? inPoints : inPixels;
}

// A press by the keyboard leaves the pointer anywhere: then the older guess is the better one.
Point QtStatusArea::rememberPress() {
  if (const auto guess = framePressed()) guessedFrame_ = guess;
  const auto frame = isPointerStale_ ? iconFrame() : std::nullopt;
  return frame ? frame->center() : session_.pointerLocation();
}

}  // namespace vistrel::tray
