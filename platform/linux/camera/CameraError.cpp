#include "linux/camera/CameraError.h"

#include <cerrno>
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace vistrel::camera {
namespace {

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// Catalogues know the group that cameras belong to nearly everywhere, and no other.
Error denied(const std::string& group) {
  if (group.empty()) return {translatable("Access to the camera is denied.")};
  if (group == "video") return {translatable("Access to the camera is denied; the group video has it.")};
  return {"Access to the camera is denied; the group " + group + " has it."};
}

Error reported(const std::string& text) {
  return {"The camera reported an error" + (text.empty() ? "." : ": " + text)};
}

// As in "error set output format: -16 (Device or resource busy)".
std::optional<int> errorNumberIn(const std::string& message) {
  const auto sign = message.find(": -");
  const auto end = sign == std::string::npos ? sign : message.find(" (", sign);
  if (end == std::string::npos) return std::nullopt;
  const char* first = message.data() + sign + 3;
  int number = 0;
  const auto read = std::from_chars(first, message.data() + end, number);
  return read.ec == std::errc() && read.ptr == message.data() + end ? std::optional(number) : std::nullopt;
}

}  // namespace

Error errorOf(CameraError problem, const std::string& group) {
  switch (problem) {
    case CameraError::Busy:
      return {translatable("The camera is in use by another program.")};
    case CameraError::Denied:
      return denied(group);
    case CameraError::Silent:
      return {translatable("The camera does not answer.")};
    default:
      return {translatable("The camera is no longer connected.")};
  }
}

Error errorOfCall(int errorNumber, const std::string& group) {
  switch (errorNumber) {
    case EBUSY:
      return errorOf(CameraError::Busy);
    case EACCES:
    case EPERM:
      return errorOf(CameraError::Denied, group);
    case ENOENT:
    case ENODEV:
    case ENXIO:
      return errorOf(CameraError::Gone);
    default:
      return reported(std::generic_category().message(errorNumber));
  }
}

// A daemon says what the kernel said in the user's language, which is this program's too; only what it says
// of its own accord is always English.
Error errorOfMessage(const std::string& message, const std::string& group) {
  if (const auto number = errorNumberIn(message)) return errorOfCall(*number, group);
  for (const int number : {EBUSY, EACCES, EPERM, ENODEV, ENXIO})
    if (contains(message, std::generic_category().message(number))) return errorOfCall(number, group);
  if (contains(message, "busy")) return errorOf(CameraError::Busy);
  if (contains(message, "ermission")) return errorOf(CameraError::Denied, group);
  const bool isGone = contains(message, "target") || contains(message, "connection");
  return isGone ? errorOf(CameraError::Gone) : reported(message);
}

}  // namespace vistrel::camera
