#pragma once

#include <cstdlib>
#include <string_view>

namespace vistrel::desktop {

/// Whether the desktop that runs goes by `name`, one of those in XDG_CURRENT_DESKTOP (Desktop Entry
/// Specification, "OnlyShowIn"), between colons.
[[nodiscard]] inline bool isDesktop(std::string_view name) {
  const char* value = std::getenv("XDG_CURRENT_DESKTOP");
  std::string_view names = value ? value : "";
  while (!names.empty()) {
    const auto end = names.find(':');
    if (names.substr(0, end) == name) return true;
    names.remove_prefix(end == std::string_view::npos ? names.size() : end + 1);
  }
  return false;
}

}  // namespace vistrel::desktop
