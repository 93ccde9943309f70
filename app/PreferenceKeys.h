#pragma once

#include <array>
#include <cstddef>

#include "KeyboardShortcuts/Name.h"
#include "base/Geometry.h"

/// The program's persistent settings: keys, and the tables into which the stored integers point.
namespace vistrel::preference {

inline constexpr const char* kSelectedIcon = "selectedUIIcon";
inline constexpr const char* kSelectedPopoverSize = "selectedPopoverSize";
inline constexpr const char* kDismiss = "dismissPreference";
inline constexpr const char* kSelectedMirroring = "selectedMirroringPreference";
inline constexpr const char* kDefaultCamera = "defaultCameraPreference";

/// Written by the desktop, in the global domain.
inline constexpr const char* kInterfaceStyle = "AppleInterfaceStyle";
inline constexpr const char* kDarkStyle = "Dark";

inline constexpr std::array<const char*, 3> kIcons = {"Icon1", "Icon2", "Icon3"};

struct NamedSize {
  const char* name;
  Size size;  ///< in points
};
inline constexpr std::array<NamedSize, 3> kSizes = {
    {{"Small", {426, 240}}, {"Medium", {852, 480}}, {"Large", {1278, 720}}}};

inline constexpr std::array<const char*, 2> kDismissBehaviors = {"Click away from the window",
                                                                 "Click on the icon again"};

/// The entry of a table that a stored index means: the first one for an index that no control can have
/// written.
template <class T, std::size_t N>
[[nodiscard]] constexpr const T& entryAt(const std::array<T, N>& table, long long index) {
  return table[index >= 0 && static_cast<unsigned long long>(index) < N ? static_cast<std::size_t>(index)
                                                                        : 0];
}

}  // namespace vistrel::preference

/// The names under which the program stores shortcuts of the user's choice.
namespace vistrel::shortcutName {

/// Opens the mirror, or closes it; without a default.
[[nodiscard]] inline const KeyboardShortcuts::Name& toggleShortcutMode() {
  static const KeyboardShortcuts::Name name("toggleShortcutMode");
  return name;
}

}  // namespace vistrel::shortcutName
