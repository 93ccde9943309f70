#pragma once

#include <string>

#include "base/Result.h"

namespace vistrel::camera {

/// Why a camera cannot be had.
enum class CameraError { Gone, Busy, Denied, Silent };

[[nodiscard]] Error errorOf(CameraError problem);
/// What a failed system call means for a camera.
[[nodiscard]] Error errorOfCall(int errorNumber);
/// What a message of PipeWire's means for a camera; an empty one means that it is gone.
[[nodiscard]] Error errorOfMessage(const std::string& message);

}  // namespace vistrel::camera
