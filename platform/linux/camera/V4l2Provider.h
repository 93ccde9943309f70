#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "linux/Reactor.h"
#include "linux/camera/CameraProvider.h"
#include "linux/camera/FileWatch.h"
#include "linux/camera/V4l2Probe.h"
#include "linux/camera/V4l2Seat.h"
#include "linux/camera/V4l2System.h"

namespace vistrel::camera {

/// The cameras of the kernel, for desktops without PipeWire. A node is looked at when it appears or changes,
/// so that asking for the list opens nothing. A device that does not answer is waited for once, 250 ms at
/// most however often its node changes meanwhile, and is listed when it has.
class V4l2Provider final : public CameraProvider {
 public:
  /// What the identifiers of these cameras begin with.
  static constexpr std::string_view kIdPrefix = "v4l2:";

  /// `folder` is where the nodes appear.
  V4l2Provider(desktop::Reactor& reactor, V4l2System& system, const std::string& folder);

  [[nodiscard]] std::vector<CameraEntry> cameras() override;
  Result<std::unique_ptr<CaptureDevice>> open(const std::string& id) override;

 private:
  struct Node {
    /// Counts the devices that were here one after the other: each is a camera of its own.
    int arrivals = 0;
    V4l2Probe::Answer camera;
    std::shared_ptr<V4l2Probe> probe;
    std::shared_ptr<V4l2Seat> seat = std::make_shared<V4l2Seat>();
    V4l2System::Clock::time_point deadline;
  };

  void changed(const std::string& path, FileWatch::Change change);
  void look(const std::string& path);
  [[nodiscard]] static std::string idOf(const std::string& path, const Node& node);

  desktop::Reactor& reactor_;
  V4l2System& system_;
  std::string folder_;
  std::map<std::string, Node> nodes_;  // by path
  FileWatch watch_;
};

}  // namespace vistrel::camera
