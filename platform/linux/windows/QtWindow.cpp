#include "linux/windows/QtWindow.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QPointer>
#include <QWindow>
#include <utility>

#include "appkit/NSPopUpButton.h"
#include "appkit/NSView.h"
#include "linux/qt/AccessibleRole.h"
#include "linux/widgets/QtControls.h"
#include "linux/windows/NativeEvents.h"

namespace vistrel::windows {

namespace {

bool isTab(const QEvent& event) {
  return event.type() == QEvent::KeyPress && static_cast<const QKeyEvent&>(event).key() == Qt::Key_Tab;
}

}  // namespace

QtWindow::QtWindow(NSWindow& window, backend::WindowClient& client, Surroundings& surroundings)
    : window_(window),
      client_(client),
      x11_(surroundings.x11),
      hiding_(surroundings.hiding),
      shell_(new Shell(*this)),
      tree_(shell_->content(), *this),
      attributes_(window, *shell_, x11_),
      pointer_(shell_->content(), client, [this] { return commands_ > 0; }) {
  const CommandScope scope(*this);
  attributes_.applyFlags();
  attributesDidChange();
  QObject::connect(&hiding_, &HidingWatch::changed, &context_, [this] { shellStateChanged(); });
  QObject::connect(&surroundings.popups, &PopupWatch::closed, &context_, [this] { popupClosed(); });
}

QtWindow::~QtWindow() {
  if (menu_) menu_->close();
  shell_->retire();
}

void QtWindow::contentDidChange() {
  const CommandScope scope(*this);
  tree_.build(window_.contentView().get());
  addCloseButton();
  firstResponderDidChange(dynamic_cast<NSView*>(window_.firstResponder()));
  const bool isOther = std::exchange(builtContent_, window_.contentView()) != window_.contentView();
  if (isOther) pointer_.contentDidChange();
}

void QtWindow::addCloseButton() {
  const auto& button = window_.closeButton();
  if (!button || !attributes_.hasChrome() || tree_.find(button.get())) return;
  tree_.add(*button,
            std::make_unique<widgets::CloseButton>(*button, static_cast<widgets::ViewClient&>(*this)));
}

void QtWindow::show() {
  const CommandScope scope(*this);
  if (!shell_->isVisible()) {
    shell_->forgetMinimized();
    const QWindow* old = shell_->windowHandle();
    if (old && x11_.presenceOf(*old) == X11Windows::Presence::None) shell_->renew();
    attributes_.makeRoom();
    attributesDidChange();
    attributes_.applyBeforeShowing();
    x11_.noteUserAction();
    if (hiding_.isDesktopShown()) hiding_.endShownDesktop();
    hiding_.comeAlong(*shell_->windowHandle());
    shell_->show();
    if (attributes_.hasChrome()) x11_.standAlone(*shell_->windowHandle());
    mayBeMisplaced_ = window_.kind() == NSWindowKind::Popover && !x11_.isXWayland();
  }
  activate();
  firstResponderDidChange(dynamic_cast<NSView*>(window_.firstResponder()));
}

void QtWindow::hide() {
  const CommandScope scope(*this);
  if (menu_) menu_->close();
  shell_->hide();
  toldHiding_.reset();
  pointer_.didLeave();
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
  if (attributes_.applyColors()) tree_.refreshAll();
  attributes_.applyFrame();
  addCloseButton();
  attributes_.applyWhileShown();
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
  menu_ = new ButtonMenu(*face, button);
  QObject::connect(menu_, &QMenu::aboutToHide, &context_, [this] { menuClosed(); }, Qt::QueuedConnection);
  menu_->popUp(wasKeyLast_ ? ButtonMenu::OpenedBy::Keyboard : ButtonMenu::OpenedBy::Pointer);
}

// While one was open the pointer was neither in the content nor away from it.
void QtWindow::popupClosed() {
  if (shell_->isVisible()) pointer_.look();
}

// A menu that a key opened has shown what hangs on the pointer, wherever that was.
void QtWindow::menuClosed() {
  if (menu_ && menu_->isVisible()) return;
  pointer_.lookAnew();
}

void QtWindow::shellCloseRequested() {
  QMetaObject::invokeMethod(&context_, [this] { client_.closeRequested(); }, Qt::QueuedConnection);
}

void QtWindow::shellActivated() {
  // Nothing was heard of the pointer while an alert was up.
  if (!attributes_.hasChrome()) pointer_.look();
  client_.didGainFocus();
}

void QtWindow::shellDeactivated() {
  // A key that another program has grabbed looks like a lost focus while it is held.
  if (shell_->windowHandle() && x11_.hasFocus(*shell_->windowHandle())) return;
  client_.didLoseFocus();
}

void QtWindow::shellMoved() {
  if (commands_ > 0 || !shell_->isVisible() || attributes_.contentOnDesktop() == window_.frame()) return;
  // A manager that gives a new window a title bar before it sees that none is wanted has moved it by that.
  if (std::exchange(mayBeMisplaced_, false)) {
    const CommandScope scope(*this);
    return attributes_.applyFrame();
  }
  client_.didMove(attributes_.contentOnDesktop());
}

void QtWindow::shellScaled() { attributes_.applyChrome(); }

// In a turn of its own: the answer may be to bring the window back, or to close it.
void QtWindow::shellStateChanged() {
  QMetaObject::invokeMethod(&context_, [this] { tellPresence(); }, Qt::QueuedConnection);
}

void QtWindow::tellPresence() {
  if (!shell_->isVisible()) return;
  const auto hiding = hiding_.hidingOf(*shell_->windowHandle());
  // Some managers hide the windows to show the desktop, and bring them back some time after its end.
  if (hiding && toldHiding_ == backend::Hiding::DesktopShown) return;
  if (std::exchange(toldHiding_, hiding) == hiding) return;
  if (!hiding) return client_.didReturnToScreen();
  client_.didLeaveScreen(*hiding);
}

void QtWindow::shellDragBegan() {
  if (attributes_.hasChrome()) client_.dragDidBegin();
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
  client_.didMove(attributes_.contentOnDesktop());
}

void QtWindow::shellPointerEntered() { pointer_.didEnter(); }

void QtWindow::shellPointerLeft() { pointer_.didLeave(); }

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
