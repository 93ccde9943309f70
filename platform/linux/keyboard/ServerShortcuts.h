#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <vector>

#include "backend/Keyboard.h"
#include "linux/keyboard/ModifierMap.h"

namespace vistrel::keyboard {

/// The combinations that other connections have taken for themselves on the X server, which alone knows them
/// where no desktop tells. Each is found by trying to take it, and given back at once. `connection` must hold
/// none, for it would lose them; `isOurs` names those of this program's other connection.
[[nodiscard]] std::vector<backend::HotKeyCombination> takenOnServer(
    xcb_connection_t* connection, const ModifierMap& modifiers,
    const std::function<bool(backend::HotKeyCombination)>& isOurs);

}  // namespace vistrel::keyboard
