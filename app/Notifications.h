#pragma once

#include <string>

/// Names of the notifications by which the program's pieces hear of each other; each is made once.
namespace vistrel::notification {

/// A preference that the icon, the popover or its closing depend on was written.
[[nodiscard]] inline const std::string& dataChanged() {
  static const std::string name = "dataChanged";
  return name;
}

/// The mirroring preference was written; it counts from the next preview on.
[[nodiscard]] inline const std::string& mirroringChanged() {
  static const std::string name = "mirroringChanged";
  return name;
}

/// The popover was torn off into a window of its own.
[[nodiscard]] inline const std::string& windowDetached() {
  static const std::string name = "windowDetached";
  return name;
}

/// Why the mirror shows no picture: in the user info under `kReasonKey` a sentence as `std::string`, empty
/// when there is no reason (any more). Posted by the mirror's content.
[[nodiscard]] inline const std::string& emptinessChanged() {
  static const std::string name = "emptinessChanged";
  return name;
}
inline constexpr const char* kReasonKey = "reason";

/// The desktop switched between light and dark; on the distributed centre.
[[nodiscard]] inline const std::string& interfaceThemeChanged() {
  static const std::string name = "AppleInterfaceThemeChangedNotification";
  return name;
}

}  // namespace vistrel::notification
