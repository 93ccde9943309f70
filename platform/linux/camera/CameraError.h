#pragma once

#include <string>

#include "base/Result.h"

namespace vistrel::camera {

/// Why a camera cannot be had.
enum class CameraError { Gone, Busy, Denied, Silent };

/// In a sentence; `group` has access where others are denied it, or is empty.
[[nodiscard]] Error errorOf(CameraError problem, const std::string& group = {});
/// What a failed system call means for a camera.
[[nodiscard]] Error errorOfCall(int errorNumber, const std::string& group = {});
/// What a message of PipeWire's means for a camera.
[[nodiscard]] Error errorOfMessage(const std::string& message, const std::string& group = {});

}  // namespace vistrel::camera
