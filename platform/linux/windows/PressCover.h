#pragma once

#include <QObject>
#include <QPoint>
#include <QTimer>
#include <memory>

#include "linux/x11/InputCover.h"

class QRegion;

namespace vistrel::windows {

/// In a Wayland session the X server hears of presses on windows of X11 alone. So while an attached popover
/// waits for a press elsewhere, or a menu of ours is open, the desktop beside our windows is covered: such a
/// press is heard of wherever it is, and goes to nobody else.
class PressCover final : public QObject {
 public:
  PressCover();
  ~PressCover() override;

  /// Whether somebody waits for presses outside.
  void setAwaited(bool isAwaited);
  [[nodiscard]] bool isUp() const { return cover_ && cover_->isAble(); }
  /// Whether it stands beside an attached popover that waits for presses, not beside a menu alone.
  [[nodiscard]] bool isBesidePopover() const;
  /// A left press at `place`, in points, fell on it. Where the icon of the tray wants a double click, the
  /// second press of one falls on it, too.
  void pressed(QPoint place);

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void update();
  void cover(const QRegion& region);
  void uncover();
  void sayFailure();
  [[nodiscard]] bool isWanted() const;

  bool isXWayland_ = false;
  bool isAwaited_ = false;
  bool isUpdateDue_ = false;
  bool isFailureSaid_ = false;
  QTimer doubleClick_;
  QPoint firstPress_;
  std::unique_ptr<x11::InputCover> cover_;
};

}  // namespace vistrel::windows
