#pragma once

#include <cstdint>
#include <string>

#include "appkit/NSEvent.h"

namespace vistrel::KeyboardShortcuts {

/// The hot-key bits of the four modifiers among the flags; every other flag is dropped.
[[nodiscard]] std::int64_t carbon(NSEventModifierFlags flags);

/// The flags of the four modifiers among hot-key bits; every other bit is dropped.
[[nodiscard]] NSEventModifierFlags modifierFlags(std::int64_t carbon);

/// Hot-key bits without any but the four modifiers.
[[nodiscard]] std::int64_t normalized(std::int64_t carbon);

/// The modifiers as symbols, always in the order ⌃⌥⇧⌘.
[[nodiscard]] std::string description(NSEventModifierFlags flags);

}  // namespace vistrel::KeyboardShortcuts
