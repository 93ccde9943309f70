#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "linux/camera/V4l2System.h"
#include "linux/camera/VideoMode.h"

namespace vistrel::camera {

/// Looks at one node on a thread, since opening a device may block for seconds. A look that nobody waits for
/// any more goes on and touches nothing but itself and the system.
class V4l2Probe : public std::enable_shared_from_this<V4l2Probe> {
 public:
  struct Camera {
    /// With the name that the driver gives, once it has been asked.
    V4l2System::Label label;
    /// Empty while the camera may not be opened.
    std::vector<VideoMode> modes;
  };
  /// None when no usable camera is behind the node.
  using Answer = std::optional<Camera>;

  V4l2Probe(V4l2System& system, std::string path);

  /// Looks, or looks anew after a look that is under way, whose answer is old. True when none was under way.
  bool look();
  /// The answer of the last look; none when there is none yet at `deadline`.
  [[nodiscard]] std::optional<Answer> await(V4l2System::Clock::time_point deadline);

 private:
  enum class State { Idle, Looking, LookingInVain };

  void run();
  void answerUnseen();

  V4l2System& system_;
  std::string path_;
  std::mutex mutex_;
  std::condition_variable answered_;
  State state_ = State::Idle;
  std::optional<Answer> answer_;
};

}  // namespace vistrel::camera
