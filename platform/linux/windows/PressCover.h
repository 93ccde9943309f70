#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <optional>

#include "base/Geometry.h"
#include "linux/x11/InputCover.h"

namespace vistrel::windows {

/// In a Wayland session the X server hears of presses on windows of X11 alone. So while an attached popover
/// waits for a press elsewhere, or a menu of ours is open, the desktop beside our windows is covered: such a
/// press is heard of wherever it is, and goes to nobody else. The icon stays free, whose host tells of its
/// presses.
class PressCover final : public QObject {
 public:
  using IconFrame = std::function<std::optional<Rect>()>;
  explicit PressCover(IconFrame iconFrame);
  ~PressCover() override;

  /// Whether somebody waits for presses outside.
  void setAwaited(bool isAwaited);
  [[nodiscard]] bool isUp() const { return cover_ && cover_->isAble(); }

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void update();
  void start();
  [[nodiscard]] bool isWanted() const;

  IconFrame iconFrame_;
  bool isXWayland_ = false;
  bool isAwaited_ = false;
  bool isUpdateDue_ = false;
  bool isFailureSaid_ = false;
  std::unique_ptr<x11::InputCover> cover_;
};

}  // namespace vistrel::windows
