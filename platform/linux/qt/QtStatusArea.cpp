#include "qt/QtStatusArea.h"

#include <QApplication>
#include <QWidget>
#include <utility>

#include "appkit/NSEvent.h"
#include "appkit/NSMenu.h"
#include "host/Session.h"
#include "qt/Geometry.h"
#include "qt/IconAnchor.h"

namespace vistrel::qt {

namespace {

using Flags = NSEventModifierFlags;

constexpr const char* kName = "Vistrel";

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

// Where the icon is a window of ours, what reads the screen aloud finds it by that window's name.
void nameEmbeddedWindow() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (qstrcmp(widget->metaObject()->className(), "QSystemTrayIconSys") != 0) continue;
    widget->setWindowTitle(kName);
    widget->setAccessibleName(kName);
  }
}

}  // namespace

QtStatusArea::QtStatusArea(host::SessionHost& session)
    : session_(session),
      mirror_({.willOpen = [this] { hostWillOpenMenu(); },
               .didClose =
                   [this] {
                     if (client_) client_->statusMenuDidClose();
                   },
               .chosen =
                   [this](auto item) {
                     if (client_) client_->statusMenuItemChosen(std::move(item));
                   }}) {
  hosts_ = std::make_unique<TrayHostWatch>([this] {
    makeIcon();
    hosts_.reset();
  });
}

QtStatusArea::~QtStatusArea() = default;

void QtStatusArea::makeIcon() {
  icon_ = std::make_unique<QSystemTrayIcon>();
  icon_->setToolTip(kName);
  icon_->setContextMenu(&mirror_.native());
  mirror_.didAttach();
  QObject::connect(icon_.get(), &QSystemTrayIcon::activated, [this](auto reason) { pressed(reason); });
  update();
}

void QtStatusArea::update() {
  if (!icon_) return;
  if (isShown_)
    icon_->setIcon(image_.icon(isHighlighted_ ? TrayImage::Look::Highlighted : TrayImage::Look::Plain));
  icon_->setVisible(isShown_);
  nameEmbeddedWindow();
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

void QtStatusArea::mirrorMenu(std::shared_ptr<NSMenu> menu) { mirror_.mirror(std::move(menu)); }

void QtStatusArea::popUpMenu(std::shared_ptr<NSMenu> menu) {
  popUp_ = std::make_unique<PopUpMenu>(
      *menu, PopUpMenu::Handlers{.didClose =
                                     [this] {
                                       if (client_) client_->statusMenuDidClose();
                                     },
                                 .chosen =
                                     [this](auto item) {
                                       if (client_) client_->statusMenuItemChosen(std::move(item));
                                     }});
  popUp_->show(toQt(iconFrame().value_or(Rect{})));
}

void QtStatusArea::dismissMenu() { popUp_.reset(); }

std::optional<Rect> QtStatusArea::iconFrame() {
  if (!icon_ || !isShown_) return std::nullopt;
  const QRect told = icon_->geometry();
  return told.isEmpty() ? guessedFrame_ : std::optional(fromQt(told));
}

void QtStatusArea::pressed(QSystemTrayIcon::ActivationReason reason) {
  switch (reason) {
    case QSystemTrayIcon::Trigger:
    case QSystemTrayIcon::DoubleClick:
      return report(host::PointerButton::Left);
    case QSystemTrayIcon::MiddleClick:
      return report(host::PointerButton::Middle);
    case QSystemTrayIcon::Context:
      // Where the menu is on screen this is the press that opened it, and that was told already.
      if (!mirror_.native().isVisible()) report(host::PointerButton::Right);
      return;
    case QSystemTrayIcon::Unknown:
      return;
  }
}

void QtStatusArea::report(host::PointerButton button) {
  rememberPointer();
  mirror_.endShowing();
  if (client_) client_->statusIconPressed(button, heldModifiers());
}

void QtStatusArea::hostWillOpenMenu() {
  rememberPointer();
  if (client_) client_->statusMenuWillOpen();
}

// A press by the keyboard leaves the pointer anywhere: then the older guess is the better one.
void QtStatusArea::rememberPointer() {
  if (const auto guess = guessIconFrame(session_.pointerLocation(), session_.screens()))
    guessedFrame_ = guess;
}

}  // namespace vistrel::qt
