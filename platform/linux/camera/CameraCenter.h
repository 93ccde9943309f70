#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "backend/Camera.h"
#include "linux/Reactor.h"
#include "linux/camera/CameraProvider.h"
#include "linux/camera/FileWatch.h"
#include "linux/camera/PipeWireGraph.h"

namespace vistrel::camera {

class CaptureStream;

/// The order of the list: what is built in first, then by where it is attached.
[[nodiscard]] bool isListedBefore(const CameraEntry& a, const CameraEntry& b);

/// The cameras of a Linux desktop: through PipeWire, or directly through V4L2 where PipeWire lists none (its
/// daemon does not run, or nothing tells it of cameras). The streams it opens are `CaptureStream`s, so each
/// is a `GlassSource` too.
class CameraCenter final : public backend::Cameras {
 public:
  /// `reactor` must outlive the center and every stream that it opened.
  explicit CameraCenter(desktop::Reactor& reactor);
  ~CameraCenter() override;

  /// Answers whether the lid is closed, behind which a built-in camera sees nothing.
  void setLidQuestion(std::function<bool()> question) { isLidClosed_ = std::move(question); }

  /// Every stream lets go of its camera while the computer sleeps, and goes on by itself afterwards.
  void setAsleep(bool isAsleep);

  [[nodiscard]] std::vector<backend::CameraDevice> devices() override;
  Result<std::unique_ptr<backend::CameraStream>> open(const std::string& id) override;

 private:
  void connect(int attempts);
  CameraProvider& v4l2();
  void watchForDaemon();

  desktop::Reactor& reactor_;
  std::function<bool()> isLidClosed_;
  std::vector<std::weak_ptr<CaptureStream*>> streams_;
  std::shared_ptr<PipeWireGraph> graph_;
  std::unique_ptr<CameraProvider> pipewire_;  // while connected
  std::unique_ptr<CameraProvider> v4l2_;      // while PipeWire lists none
  std::unique_ptr<FileWatch> daemonWatch_;
  std::unique_ptr<desktop::Registration> retry_;
};

}  // namespace vistrel::camera
