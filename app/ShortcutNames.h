#pragma once

#include "KeyboardShortcuts/Name.h"

/// The names under which the program stores shortcuts of the user's choice.
namespace vistrel::shortcutName {

/// Opens the mirror, or closes it; without a default.
[[nodiscard]] inline const KeyboardShortcuts::Name& toggleShortcutMode() {
  static const KeyboardShortcuts::Name name("toggleShortcutMode");
  return name;
}

}  // namespace vistrel::shortcutName
