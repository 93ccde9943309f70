#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "KeyboardShortcuts/Key.h"
#include "appkit/NSEvent.h"

namespace vistrel {
class NSMenu;
class NSMenuItem;
}  // namespace vistrel

namespace vistrel::KeyboardShortcuts {

class Name;

/// One key combination, numbered as the hot-key service does: a virtual key code and hot-key modifier bits.
class Shortcut {
 public:
  /// Bits of `carbonModifiers` other than the four modifiers are dropped.
  explicit Shortcut(std::int64_t carbonKeyCode, std::int64_t carbonModifiers = 0);
  explicit Shortcut(Key key, NSEventModifierFlags modifiers = {});
  /// What a key event pressed or released; none for another event.
  [[nodiscard]] static std::optional<Shortcut> fromEvent(const NSEvent& event);
  /// The stored shortcut of a name.
  [[nodiscard]] static std::optional<Shortcut> fromName(const Name& name);

  /// The shortcut that a JSON text holds, its members as they stand (no bit is dropped). None for a text that
  /// is no such object: not JSON, a member missing or not a whole number of 64 bits, over 1 MiB, or nested
  /// deeper than 64 levels. Further members are ignored.
  [[nodiscard]] static std::optional<Shortcut> decode(std::string_view json);
  /// The compact JSON text, `{"carbonKeyCode":49,"carbonModifiers":256}` for Command-Space.
  [[nodiscard]] std::string encode() const;

  [[nodiscard]] std::int64_t carbonKeyCode() const { return carbonKeyCode_; }
  [[nodiscard]] std::int64_t carbonModifiers() const { return carbonModifiers_; }
  [[nodiscard]] Key key() const { return {carbonKeyCode_}; }
  [[nodiscard]] NSEventModifierFlags modifiers() const;
  bool operator==(const Shortcut&) const = default;

  /// What the user sees: modifier symbols, then the key's symbol or upper-case character; U+FFFD for the key
  /// when the layout cannot be asked.
  [[nodiscard]] std::string description() const;
  /// What the user's keyboard prints on the key: a fixed symbol, or the unshifted character of the layout.
  /// None when the layout cannot be asked.
  [[nodiscard]] std::optional<std::string> keyToCharacter() const;
  /// The key as a menu item's key equivalent; empty for one that a menu item cannot have.
  [[nodiscard]] std::string keyEquivalentText() const;

  /// True when the desktop uses the combination for an enabled shortcut of its own. Asks the desktop each
  /// time.
  [[nodiscard]] bool isTakenBySystem() const;
  /// The first item, depth first, whose key equivalent is this combination; none without one.
  [[nodiscard]] std::shared_ptr<NSMenuItem> matchingMenuItem(const NSMenu& menu) const;

 private:
  std::int64_t carbonKeyCode_;
  std::int64_t carbonModifiers_;
};

}  // namespace vistrel::KeyboardShortcuts

template <>
struct std::hash<vistrel::KeyboardShortcuts::Shortcut> {
  std::size_t operator()(const vistrel::KeyboardShortcuts::Shortcut& shortcut) const noexcept {
    // Key codes stay below the modifiers' lowest bit many times over, so the sum spreads well.
    constexpr std::uint64_t kSpread = 0x10000;
    const auto keyCode = static_cast<std::uint64_t>(shortcut.carbonKeyCode());
    return std::hash<std::uint64_t>{}(keyCode * kSpread ^
                                      static_cast<std::uint64_t>(shortcut.carbonModifiers()));
  }
};
