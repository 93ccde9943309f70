#pragma once

#include <string>

namespace vistrel {

inline constexpr const char* NSAppearanceNameAqua = "NSAppearanceNameAqua";
inline constexpr const char* NSAppearanceNameDarkAqua = "NSAppearanceNameDarkAqua";

/// The look of a window or view, by name: light (Aqua) or dark (DarkAqua).
struct NSAppearance {
  std::string name = NSAppearanceNameAqua;

  [[nodiscard]] bool isDark() const { return name == NSAppearanceNameDarkAqua; }
  bool operator==(const NSAppearance&) const = default;
};

}  // namespace vistrel
