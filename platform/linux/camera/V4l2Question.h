#pragma once

#include <optional>
#include <string>

#include "base/Geometry.h"
#include "linux/camera/V4l2System.h"

namespace vistrel::camera {

/// What the kernel says of a device that somebody else is to open.
struct V4l2Answer {
  /// Another program streams from it.
  bool isBusy = false;
  /// See `sourceSizeOf`.
  std::optional<PixelSize> sourceSize;
};

/// While PipeWire holds a device, whether it is busy need not be asked, and asking could get into its way.
enum class V4l2Asked { All, Source };

/// Asks the kernel, on a thread, since opening a device may block for seconds: one that is not done at
/// `deadline` ends by itself. None then, and where the device may not be opened by us.
[[nodiscard]] std::optional<V4l2Answer> askV4l2(V4l2System& system, const std::string& path, V4l2Asked asked,
                                                V4l2System::Clock::time_point deadline);

}  // namespace vistrel::camera
