#pragma once

#include <linux/videodev2.h>

#include <optional>
#include <vector>

#include "base/Result.h"
#include "linux/camera/Picture.h"
#include "linux/camera/V4l2System.h"
#include "linux/camera/VideoMode.h"

namespace vistrel::camera {

/// True for a node that delivers pictures; the second node of a UVC camera delivers metadata, which only
/// `device_caps` tells.
[[nodiscard]] bool capturesPictures(const v4l2_capability& capability);

/// True for a device that somebody else streams from.
[[nodiscard]] bool isBusy(V4l2System& system, int fd);

/// The size of what an opened device sees, without enlarging it. None where the driver does not say.
[[nodiscard]] std::optional<PixelSize> sourceSizeOf(V4l2System& system, int fd);

/// Every mode of an opened device that can be shown; none for an infrared- or grey-only sensor.
[[nodiscard]] std::vector<VideoMode> modesOf(V4l2System& system, int fd);

/// What the driver says of the colors of its pictures.
[[nodiscard]] SourceColor colorOf(const v4l2_pix_format& format);

}  // namespace vistrel::camera
