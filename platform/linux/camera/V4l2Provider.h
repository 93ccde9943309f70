#pragma once

#include <map>
#include <memory>
#include <string>

#include "linux/camera/CameraProvider.h"
#include "linux/camera/FileWatch.h"
#include "linux/camera/Reactor.h"
#include "linux/camera/V4l2System.h"

namespace vistrel::capture {

/// The cameras of the kernel, for desktops without PipeWire. A node is looked at when it appears or changes,
/// so that asking for the list opens nothing.
class V4l2Provider final : public CameraProvider {
 public:
  /// `folder` is where the nodes appear.
  V4l2Provider(Reactor& reactor, V4l2System& system, const std::string& folder);

  [[nodiscard]] std::vector<CameraEntry> cameras() override;
  Result<std::unique_ptr<CaptureDevice>> open(const std::string& id) override;

 private:
  void look(const std::string& path);
  /// The name of the camera behind a node; none when it is no usable one.
  [[nodiscard]] std::optional<std::string> cameraAt(const std::string& path);

  Reactor& reactor_;
  V4l2System& system_;
  std::string folder_;
  std::map<std::string, std::string> names_;  // by path
  FileWatch watch_;
};

}  // namespace vistrel::capture
