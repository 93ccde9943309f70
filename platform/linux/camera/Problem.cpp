#include "linux/camera/Problem.h"

#include <cerrno>
#include <string_view>
#include <system_error>

namespace vistrel::camera {
namespace {

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

Error reported(const std::string& text) { return {"The camera reported an error: " + text}; }

}  // namespace

Error errorOf(Problem problem) {
  switch (problem) {
    case Problem::Busy:
      return {"The camera is in use by another program."};
    case Problem::Denied:
      return {"Access to the camera is denied."};
    case Problem::Silent:
      return {"The camera does not answer."};
    default:
      return {"The camera is no longer connected."};
  }
}

Error errorOfCall(int errorNumber) {
  switch (errorNumber) {
    case EBUSY:
      return errorOf(Problem::Busy);
    case EACCES:
    case EPERM:
      return errorOf(Problem::Denied);
    case ENOENT:
    case ENODEV:
    case ENXIO:
      return errorOf(Problem::Gone);
    default:
      return reported(std::generic_category().message(errorNumber));
  }
}

Error errorOfMessage(const std::string& message) {
  if (contains(message, "busy")) return errorOf(Problem::Busy);
  if (contains(message, "ermission")) return errorOf(Problem::Denied);
  const bool isGone = message.empty() || contains(message, "target") || contains(message, "connection");
  return isGone ? errorOf(Problem::Gone) : reported(message);
}

}  // namespace vistrel::camera
