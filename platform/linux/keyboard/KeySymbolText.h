#pragma once

#include <xkbcommon/xkbcommon.h>

#include <string>

namespace vistrel::keyboard {

/// What a key symbol prints, as UTF-8: its character, or for a dead key the accent standing alone. Empty for
/// a symbol that prints nothing.
[[nodiscard]] std::string textOf(xkb_keysym_t symbol);

}  // namespace vistrel::keyboard
