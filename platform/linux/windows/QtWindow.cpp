#include "linux/windows/QtWindow.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QPointer>
#include <QWindow>
#include <utility>

#include "appkit/NSPopUpButton.h"
#include "appkit/NSView.h"
#include "linux/qt/AccessibleRole.h"
#include "linux/qt/Geometry.h"
#include "linux/qt/Icons.h"
#include "linux/qt/Palettes.h"
#include "linux/widgets/QtControls.h"
#include "linux/windows/NativeEvents.h"
#include "linux/windows/PopoverShape.h"

namespace vistrel::windows {

namespace {

// An ordinary window can be closed and moved; nothing of ours gains from another size or from being
// minimised.
constexpr Qt::WindowFlags kTitledFlags = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                         Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
constexpr Qt::WindowFlags kChrome =
    Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint;
constexpr Qt::WindowFlags kPopoverFlags = Qt::Tool | kChrome;
constexpr Qt::WindowFlags kDetachedFlags = Qt::Window | kChrome;

bool isTab(const QEvent& event) {
  return event.type() == QEvent::KeyPress && static_cast<const QKeyEvent&>(event).key() == Qt::Key_Tab;
}

}  // namespace

QtWindow::QtWindow(NSWindow& window, backend::WindowClient& client, Surroundings& surroundings)
    : window_(window),
      client_(client),
      x11_(surroundings.x11),
      shownDesktop_(surroundings.shownDesktop),
      shell_(new Shell(*this)),
      tree_(shell_->content(), *this),
      shownKind_(window.kind()) {
  const CommandScope scope(*this);
  shell_->setWindowFlags(hasChrome() ? kPopoverFlags : kTitledFlags);
  attributesDidChange();
  QObject::connect(&shownDesktop_, &ShownDesktop::changed, &context_, [this] { shellStateChanged(); });
  QObject::connect(&surroundings.popups, &PopupWatch::closed, &context_, [this] { popupClosed(); });
}

QtWindow::~QtWindow() {
  if (menu_) menu_->close();
  shell_->retire();
}

bool QtWindow::hasChrome() const { return window_.kind() != NSWindowKind::Titled; }

void QtWindow::contentDidChange() {
  const CommandScope scope(*this);
  tree_.build(window_.contentView().get());
  addCloseButton();
  firstResponderDidChange(dynamic_cast<NSView*>(window_.firstResponder()));
  // A new content under a resting pointer has not been told of it.
  const bool isOther = std::exchange(builtContent_, window_.contentView()) != window_.contentView();
  if (isOther && std::exchange(isPointerInside_, false)) tellPointer(true);
}

void QtWindow::addCloseButton() {
  const auto& button = window_.closeButton();
  if (!button || !hasChrome() || tree_.find(button.get())) return;
  tree_.add(*button,
            std::make_unique<widgets::CloseButton>(*button, static_cast<widgets::ViewClient&>(*this)));
}

void QtWindow::show() {
  const CommandScope scope(*this);
  if (!shell_->isVisible()) {
    const QWindow* old = shell_->windowHandle();
    if (old && x11_.presenceOf(*old) == X11Windows::Presence::None) shell_->renew();
    margins_ = hasChrome() ? PopoverShape::margins(window_.tip()) : QMargins();
    attributesDidChange();
    shell_->winId();
    applyChrome();
    applyKind();
    x11_.noteUserAction();
    if (shownDesktop_.isShown()) shownDesktop_.end();
    shell_->show();
    if (hasChrome()) x11_.standAlone(*shell_->windowHandle());
    mayBeMisplaced_ = window_.kind() == NSWindowKind::Popover && !x11_.isXWayland();
  }
  activate();
  firstResponderDidChange(dynamic_cast<NSView*>(window_.firstResponder()));
}

void QtWindow::hide() {
  const CommandScope scope(*this);
  if (menu_) menu_->close();
  shell_->putAway();
  isOffScreen_ = false;
  tellPointer(false);
}

bool QtWindow::isOnScreen() const {
  const QWindow* handle = shell_->windowHandle();
  return handle && x11_.presenceOf(*handle) == X11Windows::Presence::Viewable;
}

// Another program may destroy the native window, and Qt would go on showing what is none.
void QtWindow::shellUnexposed() {
  const bool isGone = x11_.presenceOf(*shell_->windowHandle()) == X11Windows::Presence::None;
  if (commands_ == 0 && isGone) shellCloseRequested();
}

void QtWindow::activate() {
  const CommandScope scope(*this);
  x11_.noteUserAction();
  if (shell_->isMinimized()) shell_->setWindowState(Qt::WindowNoState);
  shell_->raise();
  shell_->activateWindow();
  if (const QWindow* handle = shell_->windowHandle()) x11_.activate(*handle);
}

void QtWindow::attributesDidChange() {
  const CommandScope scope(*this);
  shell_->setWindowTitle(QString::fromStdString(window_.title()));
  qt::setAccessibleDescription(*shell_, window_.accessibilityHelp());
  applyLook();
  applyFrame();
  addCloseButton();
  const bool isOtherKind = std::exchange(shownKind_, window_.kind()) != window_.kind();
  if (shell_->isVisible() && hasChrome()) applyChrome();
  if (isOtherKind && shell_->isVisible()) applyKind();
}

// The flags of the native window change in place. QWidget::setWindowFlags would hide the window first, and
// the picture would flicker.
void QtWindow::applyKind() {
  QWindow& handle = *shell_->windowHandle();
  const bool isAccessory = window_.kind() == NSWindowKind::Popover;
  // Lists of windows show it where no desktop entry is installed. The popover, in no list, does not wait for
  // it.
  if (!isAccessory) handle.setIcon(qt::applicationIcon());
  if (hasChrome()) handle.setFlags(isAccessory ? kPopoverFlags : kDetachedFlags);
  x11_.setListed(handle, isAccessory ? X11Windows::ListedAs::Accessory : X11Windows::ListedAs::Window);
}

void QtWindow::applyLook() {
  const QPalette palette = qt::paletteFor(window_.effectiveAppearance());
  if (shell_->testAttribute(Qt::WA_SetPalette) && shell_->palette() == palette) return;
  shell_->setPalette(palette);
  tree_.refreshAll();
}

void QtWindow::applyFrame() {
  const QRect content = qt::toQt(window_.frame());
  const QRect outer = content.marginsAdded(margins_);
  if (outer.isEmpty()) return;
  if (shell_->geometry() != outer) {
    shell_->setFixedSize(outer.size());
    shell_->setGeometry(outer);
  }
  shell_->content().setGeometry(QRect(QPoint(margins_.left(), margins_.top()), content.size()));
}

void QtWindow::applyChrome() {
  if (!hasChrome()) return;
  const auto tip = window_.kind() == NSWindowKind::Popover ? window_.tip() : std::nullopt;
  const PopoverShape shape(shell_->content().geometry(), tip, shell_->geometry().topLeft());
  shell_->setChrome(shape.outline(), qt::chromeLine(window_.effectiveAppearance()));
  x11_.setShape(*shell_->windowHandle(), shape.region(shell_->devicePixelRatioF()));
  x11_.setBackground(*shell_->windowHandle(), qt::neutralGlass(window_.effectiveAppearance()));
}

void QtWindow::viewDidChange(NSView& view) {
  widgets::QtView* widget = tree_.find(&view);
  if (!widget) return;
  const CommandScope scope(*this);
  widget->refresh();
  // A control that was hidden could not take the focus that it has.
  if (&view == window_.firstResponder()) firstResponderDidChange(&view);
}

void QtWindow::firstResponderDidChange(NSView* view) {
  const CommandScope scope(*this);
  const widgets::QtView* widget = tree_.find(view);
  if (widget && widget->control()) {
    widget->control()->setFocus(Qt::OtherFocusReason);
  } else if (QWidget* focused = shell_->focusWidget()) {
    focused->clearFocus();
  }
}

void QtWindow::popUpMenu(NSPopUpButton& button) {
  const widgets::QtView* widget = tree_.find(&button);
  auto* face = widget ? qobject_cast<QAbstractButton*>(widget->control()) : nullptr;
  if (!face || !shell_->isVisible()) return;
  if (menu_) menu_->close();
  const auto kept = std::static_pointer_cast<NSPopUpButton>(button.shared_from_this());
  menu_ = new ButtonMenu(*face, button.menu(), button.pullsDown() ? 1 : 0,
                         [kept](const auto& item) { kept->itemChosen(item); });
  QObject::connect(menu_, &QMenu::aboutToHide, face, [face] { face->setDown(false); });
  QObject::connect(
      menu_, &QMenu::aboutToHide, &context_, [this] { menuClosed(); }, Qt::QueuedConnection);
  face->setDown(true);
  const QRect anchor(face->mapToGlobal(QPoint(0, 0)), face->size());
  menu_->popUpBeside(anchor, wasKeyLast_ ? ButtonMenu::OpenedBy::Keyboard : ButtonMenu::OpenedBy::Pointer);
}

bool QtWindow::isPointerOverContent() const {
  const QWidget* under = QApplication::widgetAt(QCursor::pos());
  return under && (under == &shell_->content() || shell_->content().isAncestorOf(under));
}

// While one was open the pointer was neither in the content nor away from it.
void QtWindow::popupClosed() {
  if (shell_->isVisible()) tellPointer(isPointerOverContent());
}

// A menu that a key opened has shown what hangs on the pointer, wherever that was.
void QtWindow::menuClosed() {
  if (menu_ && menu_->isVisible()) return;
  const bool isInside = isPointerOverContent();
  isPointerInside_ = !isInside;
  tellPointer(isInside);
}

void QtWindow::tellPointer(bool isInside) {
  if (std::exchange(isPointerInside_, isInside) == isInside) return;
  const auto tell = [this, isInside] { isInside ? client_.pointerDidEnter() : client_.pointerDidLeave(); };
  if (commands_ == 0) {
    tell();
  } else {
    QMetaObject::invokeMethod(&context_, tell, Qt::QueuedConnection);
  }
}

Rect QtWindow::contentOnDesktop() const { return qt::fromQt(shell_->geometry().marginsRemoved(margins_)); }

void QtWindow::shellCloseRequested() {
  QMetaObject::invokeMethod(
      &context_, [this] { client_.closeRequested(); }, Qt::QueuedConnection);
}

void QtWindow::shellActivated() {
  // Nothing was heard of the pointer while an alert was up.
  if (!hasChrome()) tellPointer(isPointerOverContent());
  client_.didGainFocus();
}

void QtWindow::shellDeactivated() {
  // A key that another program has grabbed looks like a lost focus while it is held.
  if (shell_->windowHandle() && x11_.hasFocus(*shell_->windowHandle())) return;
  client_.didLoseFocus();
}

void QtWindow::shellMoved() {
  if (commands_ > 0 || !shell_->isVisible() || contentOnDesktop() == window_.frame()) return;
  // A manager that gives a new window a title bar before it sees that none is wanted has moved it by that.
  if (std::exchange(mayBeMisplaced_, false)) {
    const CommandScope scope(*this);
    return applyFrame();
  }
  client_.didMove(contentOnDesktop());
}

void QtWindow::shellScaled() { applyChrome(); }

// In a turn of its own: the answer may be to bring the window back, or to close it.
void QtWindow::shellStateChanged() {
  QMetaObject::invokeMethod(
      &context_, [this] { tellPresence(); }, Qt::QueuedConnection);
}

void QtWindow::tellPresence() {
  if (!shell_->isVisible()) return;
  const bool isDesktopShown = shownDesktop_.isShown();
  const bool isOffScreen = shell_->isMinimized() || isDesktopShown;
  if (std::exchange(isOffScreen_, isOffScreen) == isOffScreen) return;
  if (!isOffScreen) return client_.didReturnToScreen();
  client_.didLeaveScreen(isDesktopShown ? backend::Hiding::DesktopShown : backend::Hiding::Minimized);
}

void QtWindow::shellDragBegan() {
  if (hasChrome()) client_.dragDidBegin();
}

// Some Wayland compositors let no program move its windows; all of them move one for the pointer that holds
// it.
bool QtWindow::shellDragHandedOver() {
  return window_.kind() == NSWindowKind::Detached && x11_.isXWayland() &&
         shell_->windowHandle()->startSystemMove();
}

void QtWindow::shellDragged(QPoint position) {
  if (window_.kind() != NSWindowKind::Detached) return;
  {
    const CommandScope scope(*this);
    shell_->move(position);
  }
  client_.didMove(contentOnDesktop());
}

void QtWindow::shellPointerEntered() { tellPointer(true); }

void QtWindow::shellPointerLeft() { tellPointer(false); }

bool QtWindow::shellFilter(QEvent& event) {
  wasKeyLast_ = event.type() == QEvent::KeyPress;
  const QPointer<QWidget> focused = shell_->focusWidget();
  const auto translation = translated(event);
  const bool isTaken = translation && client_.handleEvent(translation);
  if (!isTaken && isTab(event) && focused && !shell_->focusWidget()) {
    // The control gave up the focus while it handled the key. Tab has to go on from that control, so it gets
    // the native focus back first.
    const CommandScope scope(*this);
    focused->setFocus(Qt::OtherFocusReason);
  }
  return isTaken;
}

std::shared_ptr<NSEvent> QtWindow::translated(QEvent& event) {
  if (auto* key = dynamic_cast<QKeyEvent*>(&event)) return keyEvent(*key, window_);
  const QPoint origin = shell_->content().pos();
  if (auto* wheel = dynamic_cast<QWheelEvent*>(&event)) return wheelEvent(*wheel, origin, window_);
  if (auto* pinch = dynamic_cast<QNativeGestureEvent*>(&event)) return pinchEvent(*pinch, origin, window_);
  auto* press = dynamic_cast<QMouseEvent*>(&event);
  return press ? buttonEvent(*press, origin, window_) : nullptr;
}

void QtWindow::focusWanted(NSView& view) {
  if (commands_ > 0) return;
  client_.focusWanted(&view);
  if (window_.firstResponder() != &view) {
    firstResponderDidChange(dynamic_cast<NSView*>(window_.firstResponder()));
  }
}

void QtWindow::clicked(NSView& view) { client_.viewClicked(view); }

}  // namespace vistrel::windows
