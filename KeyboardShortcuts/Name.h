#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "KeyboardShortcuts/Shortcut.h"
#include "base/Unicode.h"

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
  bool operator==(const Name& other) const { return unicode::areEqual(rawValue_, other.rawValue_); }

 private:
  std::string rawValue_;
  std::optional<Shortcut> defaultShortcut_;
};

/// The preference key of a name's shortcut. It holds the shortcut's JSON text, or false once the user removed
/// it.
[[nodiscard]] std::string storageKey(const Name& name);

/// The shortcut in the preferences, read anew; none for an entry that is missing or no shortcut.
[[nodiscard]] std::optional<Shortcut> readStoredShortcut(const Name& name);

/// True when anything was ever stored for the name, the mark of a removal included.
[[nodiscard]] bool hasStoredValue(const Name& name);

void writeShortcut(const Shortcut& shortcut, const Name& name);
void writeNoShortcut(const Name& name);

}  // namespace vistrel::KeyboardShortcuts

template <>
struct std::hash<vistrel::KeyboardShortcuts::Name> {
  std::size_t operator()(const vistrel::KeyboardShortcuts::Name& name) const noexcept {
    return std::hash<std::string>{}(vistrel::unicode::decomposed(name.rawValue()));
  }
};
