#pragma once

#include <QPainterPath>
#include <QPointer>
#include <QWidget>
#include <QWindow>
#include <memory>

#include "appkit/NSWindow.h"

namespace vistrel::windows {

/// What happens to a native window. Called from the main loop.
class ShellClient {
 public:
  virtual ~ShellClient() = default;
  virtual void shellCloseRequested() = 0;
  virtual void shellActivated() = 0;
  virtual void shellDeactivated() = 0;
  /// Something other than a command of ours placed it.
  virtual void shellMoved() = 0;
  virtual void shellScaled() = 0;
  /// The desktop shows it no more.
  virtual void shellUnexposed() = 0;
  /// The window manager has minimized it, or put it back.
  virtual void shellStateChanged() = 0;
  /// The pointer, with the button down on the content, has gone far enough to mean a drag.
  virtual void shellDragBegan() = 0;
  /// Whether a drag of the content would tear the window off.
  [[nodiscard]] virtual bool shellCanBeTornOff() const = 0;
  /// Whether the desktop has taken the drag over, and tells of no more of it.
  virtual bool shellDragHandedOver() = 0;
  /// The drag goes on; the window would now lie at `position`.
  virtual void shellDragged(QPoint position) = 0;
  virtual void shellPointerEntered() = 0;
  virtual void shellPointerLeft() = 0;
  /// A key, button, wheel or touch pad event, or a movement with the secondary button held, before any widget
  /// gets it. True when it was swallowed.
  virtual bool shellFilter(QEvent& event) = 0;
};

/// A native window: a container for the content, and around it what the backend draws of its own.
class Shell final : public QWidget {
 public:
  explicit Shell(ShellClient& client);

  [[nodiscard]] QWidget& content() const { return *content_; }
  /// The line and the tip around the content; an empty path for none.
  void setChrome(const QPainterPath& outline, const QColor& line);
  /// The native window is gone: the next showing makes another.
  void renew() { destroy(); }
  /// What is shown next was never minimized. The word of that may come when it is off the screen already.
  void forgetMinimized();
  [[nodiscard]] bool canBeTornOff() const { return client_ && client_->shellCanBeTornOff(); }
  /// As a drag of the content does, without moving it; from the main loop.
  void tearOff();
  /// Nothing is reported any more; the window goes away.
  void retire();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  bool event(QEvent* event) override;
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void fillOutline(QPainter& painter, const QColor& color);
  bool filterWindow(QEvent& event);
  void endPress(const QMouseEvent& release);
  void filterContent(const QEvent& event);

  enum class Drag { None, Possible, Going };

  ShellClient* client_;
  QWidget* content_;
  QPointer<QWindow> handle_;
  QPainterPath outline_;
  QColor line_;
  Drag drag_ = Drag::None;
  QPoint pressedAt_;
  QPoint positionAtPress_;
};

}  // namespace vistrel::windows
