#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "KeyboardShortcuts/Shortcut.h"

namespace vistrel::KeyboardShortcuts {

/// The identity under which a shortcut of the user's choice is stored. Names are equal when their raw values
/// are.
class Name {
 public:
  /// Has no side effect.
  explicit Name(std::string rawValue) : rawValue_(std::move(rawValue)) {}
  /// Stores the default, if one is given and nothing was ever stored for the name: the hot key is then
  /// registered and the change announced at once.
  Name(std::string rawValue, std::optional<Shortcut> defaultShortcut);

  [[nodiscard]] const std::string& rawValue() const { return rawValue_; }
  [[nodiscard]] const std::optional<Shortcut>& defaultShortcut() const { return defaultShortcut_; }
  bool operator==(const Name& other) const { return rawValue_ == other.rawValue_; }

 private:
  std::string rawValue_;
  std::optional<Shortcut> defaultShortcut_;
};

}  // namespace vistrel::KeyboardShortcuts

template <>
struct std::hash<vistrel::KeyboardShortcuts::Name> {
  std::size_t operator()(const vistrel::KeyboardShortcuts::Name& name) const noexcept {
    return std::hash<std::string>{}(name.rawValue());
  }
};
