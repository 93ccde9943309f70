#pragma once

#include <optional>
#include <string>

#include "KeyboardShortcuts/Name.h"
#include "KeyboardShortcuts/Shortcut.h"

namespace vistrel::KeyboardShortcuts {

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
