#pragma once

#include <optional>
#include <string>

#include "backend/Keyboard.h"
#include "linux/keyboard/Keymap.h"

namespace vistrel::keyboard {

/// The words for a hot key in the XDG shortcuts specification, such as "CTRL+ALT+z".
struct PortalTrigger {
  std::string onThisLayout;   ///< with the symbol that the present layout has on the key
  std::string onPlainLayout;  ///< with that of the plain us layout: the same on every keyboard
};
/// None for a key that no symbol is on.
[[nodiscard]] std::optional<PortalTrigger> portalTrigger(backend::HotKeyCombination combination,
                                                         Keymap& keymap);

}  // namespace vistrel::keyboard
