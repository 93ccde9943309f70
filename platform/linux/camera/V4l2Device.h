#pragma once

#include <memory>
#include <string>
#include <vector>

#include "linux/Reactor.h"
#include "linux/camera/CaptureDevice.h"
#include "linux/camera/V4l2Run.h"
#include "linux/camera/V4l2System.h"

namespace vistrel::camera {

/// A camera opened directly. Frames stay in the driver's mapped buffers; only the newest is held.
class V4l2Device final : public CaptureDevice {
 public:
  /// Opens the camera; the error tells whether it is gone, busy or denied. A camera gets 250 ms to
  /// answer. When it needs longer and its modes are known, it goes on opening in the background and its start
  /// is waited for without further patience; when they are not known, the opening has failed.
  static Result<std::unique_ptr<CaptureDevice>> open(desktop::Reactor& reactor, V4l2System& system,
                                                     const V4l2Node& node,
                                                     const std::vector<VideoMode>& knownModes);
  ~V4l2Device() override;

  [[nodiscard]] const std::vector<VideoMode>& modes() const override { return modes_; }
  void begin(const ModeChoice& mode, CaptureClient& client) override;
  backend::StreamStart awaitStart(std::chrono::milliseconds patience) override;
  void stop() override;
  [[nodiscard]] std::optional<Frame> frame() const override;

 private:
  using Clock = V4l2System::Clock;

  V4l2Device(desktop::Reactor& reactor, V4l2System& system, V4l2Node node, std::shared_ptr<V4l2Run> run);

  [[nodiscard]] Clock::time_point closingDeadline() const;
  void failLater(Error error, Clock::time_point closingDeadline);
  void settle();
  void tellFailure();
  void watchFrames();
  void takeFrames();
  Result<void> hold(const V4l2Run::Filled& filled);
  [[nodiscard]] std::optional<Frame> frameIn(const V4l2Run::Filled& filled) const;
  void close(Clock::time_point deadline);

  desktop::Reactor& reactor_;
  V4l2System& system_;
  V4l2Node node_;
  std::vector<VideoMode> modes_;
  CaptureClient* client_ = nullptr;
  std::optional<ModeChoice> mode_;
  std::shared_ptr<V4l2Run> run_;  // opened before it is begun
  Clock::duration waited_{};      // for the opening, so that the start waits the less
  std::unique_ptr<desktop::Registration> registration_;
  std::optional<V4l2Run::Filled> held_;
  bool isStartUntold_ = false;
  std::optional<Error> failure_;
  /// Lives as long as a run may call back.
  std::shared_ptr<V4l2Device*> self_;
};

}  // namespace vistrel::camera
