#pragma once

#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace vistrel::keyboard {

/// A key combination as desktops write it: a key symbol and hot-key modifier bits.
struct Accelerator {
  xkb_keysym_t symbol = XKB_KEY_NoSymbol;
  std::uint32_t modifiers = 0;
  std::uint16_t place = 0;  ///< the Linux event code of a key that is meant by its place; then no symbol
  bool operator==(const Accelerator&) const = default;
};

/// Reads "<Primary><Alt>Delete", as GTK, GNOME and Xfce write it; none for what is malformed, disabled or
/// unknown.
[[nodiscard]] std::optional<Accelerator> parseGtkAccelerator(std::string_view text);

/// Reads "Meta+Ctrl+D", as Qt and KDE write it; none for what is malformed or unknown.
[[nodiscard]] std::optional<Accelerator> parseQtAccelerator(std::string_view text);

/// Reads a number of KDE's: Qt's for the key, with its modifiers in the upper bits; none for an unknown key.
[[nodiscard]] std::optional<Accelerator> acceleratorOfQtNumber(std::uint32_t number);

}  // namespace vistrel::keyboard
