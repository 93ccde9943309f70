#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "linux/x11/X11Connection.h"

namespace vistrel::keyboard {

/// Which modifier bit of the X server belongs to which key, as its modifier map has it. Command is the Super
/// key and Option the Alt key: here and nowhere else.
struct ModifierMap {
  std::uint16_t command = 0;
  std::uint16_t option = 0;
  std::uint16_t numLock = 0;
  bool operator==(const ModifierMap&) const = default;

  [[nodiscard]] static ModifierMap read(x11::X11Connection& connection);

  /// The X modifier bits for hot-key modifier bits; none when a key that is asked for is on no modifier.
  [[nodiscard]] std::optional<std::uint16_t> mask(std::uint32_t hotKeyModifiers) const;
  /// The bits that hot keys distinguish.
  [[nodiscard]] std::uint16_t significant() const;
  /// Every set of lock bits with which a hot key must work: none, caps lock, num lock, both.
  [[nodiscard]] std::vector<std::uint16_t> lockVariants() const;
};

}  // namespace vistrel::keyboard
