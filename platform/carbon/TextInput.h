#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "carbon/Status.h"

namespace vistrel {

/// Asks for what a key displays, rather than for what a press of it types.
inline constexpr std::uint16_t kUCKeyActionDisplay = 3;

class TISInputSource;

/// What the keys of a layout give.
class UCKeyboardLayout {
 private:
  friend class TISInputSource;
  UCKeyboardLayout() = default;
};

/// A keyboard layout that the user can type with.
class TISInputSource {
 public:
  [[nodiscard]] UCKeyboardLayout unicodeKeyLayoutData() const { return {}; }

 private:
  friend std::optional<TISInputSource> TISCopyCurrentASCIICapableKeyboardLayoutInputSource();
  TISInputSource() = default;
};

/// The user's present layout that types a to z; none without a backend.
[[nodiscard]] std::optional<TISInputSource> TISCopyCurrentASCIICapableKeyboardLayoutInputSource();

/// What the key at a virtual key code gives with no modifier held, as UTF-8; a dead key gives the accent
/// standing alone. `paramErr` for an action other than display, or when the keyboard cannot be asked.
OSStatus UCKeyTranslate(const UCKeyboardLayout& layout, std::uint16_t keyCode, std::uint16_t action,
                        std::string* text);

}  // namespace vistrel
