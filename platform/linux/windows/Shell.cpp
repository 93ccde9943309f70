#include "linux/windows/Shell.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMouseEvent>
#include <QPainter>
#include <utility>

#include "linux/windows/ShellAccessible.h"

namespace vistrel::windows {

namespace {

// Room that a rounded corner takes.
constexpr int kCornerSize = 8;

void fill(QPainter& painter, const QRegion& region, const QColor& color) {
  for (const QRect& part : region) painter.fillRect(part, color);
}

}  // namespace

Shell::Shell(ShellClient& client) : client_(&client), content_(new QWidget(this)) {
  setAttribute(Qt::WA_QuitOnClose, false);
  ShellAccessible::install();
  content_->installEventFilter(this);
}

// Qt remembers it of the native window, and undoes it by showing that at once.
void Shell::forgetMinimized() {
  if (!isMinimized()) return;
  destroy();
  setWindowState(Qt::WindowNoState);
}

void Shell::tearOff() {
  const auto tear = [this] {
    if (canBeTornOff()) client_->shellDragBegan();
  };
  QMetaObject::invokeMethod(this, tear, Qt::QueuedConnection);
}

void Shell::retire() {
  client_ = nullptr;
  hide();
  deleteLater();
}

void Shell::setChrome(const QPainterPath& outline, const QColor& line) {
  outline_ = outline;
  line_ = line;
  update();
}

void Shell::closeEvent(QCloseEvent* event) {
  event->ignore();
  if (client_) client_->shellCloseRequested();
}

void Shell::moveEvent(QMoveEvent* /*event*/) {
  if (client_) client_->shellMoved();
}

// The handle comes with the first showing, and again whenever Qt makes the window anew.
void Shell::showEvent(QShowEvent* /*event*/) {
  if (std::exchange(handle_, windowHandle()) == windowHandle()) return;
  handle_->installEventFilter(this);
  connect(handle_, &QWindow::screenChanged, this, [this] {
    if (client_) client_->shellScaled();
  });
}

// Where the window is blended with what is below it, what lies outside of the outline stays clear.
void Shell::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const QColor ground = palette().color(QPalette::Window);
  const bool isBlended = testAttribute(Qt::WA_TranslucentBackground);
  if (!isBlended) painter.fillRect(rect(), ground);
  if (outline_.isEmpty()) return;
  const QRect inner = content_->geometry();
  // All but the corners is straight: painting it by its path would wake Qt's threads for nothing.
  const QRegion straight = QRegion(inner.adjusted(0, kCornerSize, 0, -kCornerSize)) +
                           inner.adjusted(kCornerSize, 0, -kCornerSize, 0);
  if (isBlended) fill(painter, straight, ground);
  painter.setClipRegion(QRegion(rect()) - straight);
  if (isBlended) fillOutline(painter, ground);
  fill(painter, QRegion(inner.adjusted(-1, -1, 1, 1)) - inner, line_);
  painter.setRenderHint(QPainter::Antialiasing);
  // Twice as wide as is seen: the window is cut along the middle of the line.
  painter.setPen(QPen(line_, 2));
  painter.drawPath(outline_);
}

// What is painted over it later stays inside of it.
void Shell::fillOutline(QPainter& painter, const QColor& color) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillPath(outline_, color);
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.setCompositionMode(QPainter::CompositionMode_SourceAtop);
}

void Shell::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  drag_ = Drag::Possible;
  pressedAt_ = event->globalPosition().toPoint();
  positionAtPress_ = pos();
}

void Shell::mouseMoveEvent(QMouseEvent* event) {
  const QPoint way = event->globalPosition().toPoint() - pressedAt_;
  const bool hasBegun = drag_ == Drag::Possible && way.manhattanLength() >= QApplication::startDragDistance();
  if (hasBegun) {
    drag_ = Drag::Going;
    if (client_) client_->shellDragBegan();
  }
  if (drag_ != Drag::Going || !client_) return;
  if (hasBegun && client_->shellDragHandedOver()) {
    drag_ = Drag::None;
  } else {
    client_->shellDragged(positionAtPress_ + way);
  }
}

void Shell::mouseReleaseEvent(QMouseEvent* /*event*/) { drag_ = Drag::None; }

bool Shell::event(QEvent* event) {
  const bool isHandled = QWidget::event(event);
  if (!client_) return isHandled;
  if (event->type() == QEvent::WindowStateChange) client_->shellStateChanged();
  if (event->type() == QEvent::WindowActivate) client_->shellActivated();
  if (event->type() == QEvent::WindowDeactivate) client_->shellDeactivated();
  return isHandled;
}

bool Shell::eventFilter(QObject* object, QEvent* event) {
  if (object == content_) filterContent(*event);
  if (object == handle_ && event->type() == QEvent::Expose && !handle_->isExposed() && client_) {
    client_->shellUnexposed();
  }
  if (object == handle_ && filterWindow(*event)) return true;
  return QWidget::eventFilter(object, event);
}

// An open popup takes the pointer from what is under it.
void Shell::filterContent(const QEvent& event) {
  if (!client_ || QApplication::activePopupWidget()) return;
  if (event.type() == QEvent::Enter) client_->shellPointerEntered();
  if (event.type() == QEvent::Leave) client_->shellPointerLeft();
}

// The widget that was pressed keeps the pointer until it hears of a release. One outside it clicks nothing;
// the movement after it tells Qt what is under the pointer all the same.
void Shell::endPress(const QMouseEvent& release) {
  const QPointF outside(-1 - width(), -1 - height());
  const auto send = [&](QEvent::Type type, QPointF place, Qt::MouseButton button) {
    QMouseEvent event(type, place, place, release.globalPosition(), button, release.buttons(),
                      release.modifiers(), release.pointingDevice());
    if (handle_) QCoreApplication::sendEvent(handle_, &event);
  };
  handle_->removeEventFilter(this);
  send(release.type(), outside, release.button());
  send(QEvent::MouseMove, release.position(), Qt::NoButton);
  if (handle_) handle_->installEventFilter(this);
}

// A menu of ours that is open has the keyboard and the pointer to itself.
bool Shell::filterWindow(QEvent& event) {
  if (!client_ || QApplication::activePopupWidget()) return false;
  switch (event.type()) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::NativeGesture:
      return client_->shellFilter(event);
    case QEvent::MouseMove:
      return static_cast<const QMouseEvent&>(event).buttons() == Qt::RightButton &&
             client_->shellFilter(event);
    case QEvent::MouseButtonRelease:
      if (!client_->shellFilter(event)) return false;
      endPress(static_cast<QMouseEvent&>(event));
      return true;
    default:
      return false;
  }
}

}  // namespace vistrel::windows
