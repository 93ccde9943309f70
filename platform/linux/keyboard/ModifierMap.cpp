#include "linux/keyboard/ModifierMap.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <array>
#include <span>

#include "base/KeyCodes.h"

namespace vistrel::keyboard {

namespace {

constexpr std::uint32_t kFourModifiers = cmdKey | shiftKey | optionKey | controlKey;
constexpr std::size_t kModifierCount = 8;

void note(ModifierMap& map, xcb_keysym_t symbol, std::uint16_t bit) {
  // The first modifier that carries a key is the one that applications agree on.
  const auto set = [bit](std::uint16_t& mask) { mask = mask == 0 ? bit : mask; };
  if (symbol == XKB_KEY_Super_L || symbol == XKB_KEY_Super_R) set(map.command);
  if (symbol == XKB_KEY_Alt_L || symbol == XKB_KEY_Alt_R) set(map.option);
  if (symbol == XKB_KEY_Num_Lock) set(map.numLock);
}

/// The symbols of every key, in rows.
class KeySymbols {
 public:
  explicit KeySymbols(x11::X11Connection& connection) : first_(xcb_get_setup(connection.get())->min_keycode) {
    const auto count = static_cast<std::uint8_t>(xcb_get_setup(connection.get())->max_keycode - first_ + 1);
    reply_ = connection.wait(xcb_get_keyboard_mapping_reply,
                             xcb_get_keyboard_mapping(connection.get(), first_, count));
  }
  [[nodiscard]] std::span<const xcb_keysym_t> of(xcb_keycode_t code) const {
    if (!reply_ || code < first_) return {};
    const std::span all(xcb_get_keyboard_mapping_keysyms(reply_.get()),
                        static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(reply_.get())));
    const std::size_t width = reply_->keysyms_per_keycode;
    const std::size_t start = (code - first_) * width;
    return start + width <= all.size() ? all.subspan(start, width) : std::span<const xcb_keysym_t>{};
  }

 private:
  xcb_keycode_t first_;
  x11::Reply<xcb_get_keyboard_mapping_reply_t> reply_;
};

}  // namespace

ModifierMap ModifierMap::read(x11::X11Connection& connection) {
  ModifierMap map;
  if (!connection.isOpen()) return map;
  const auto reply =
      connection.wait(xcb_get_modifier_mapping_reply, xcb_get_modifier_mapping(connection.get()));
  if (!reply) return map;
  const KeySymbols symbols(connection);
  const auto* codes = xcb_get_modifier_mapping_keycodes(reply.get());
  const std::size_t width = reply->keycodes_per_modifier;
  for (std::size_t modifier = XCB_MAP_INDEX_1; modifier < kModifierCount; ++modifier) {
    const auto bit = static_cast<std::uint16_t>(1U << modifier);
    for (const auto code : std::span(codes + modifier * width, width)) {
      for (const auto symbol : symbols.of(code)) note(map, symbol, bit);
    }
  }
  return map;
}

std::optional<std::uint16_t> ModifierMap::mask(std::uint32_t hotKeyModifiers) const {
  struct Row {
    std::uint32_t hotKeyBit;
    std::uint16_t bit;
  };
  const std::array<Row, 4> rows = {{{cmdKey, command},
                                    {shiftKey, XCB_MOD_MASK_SHIFT},
                                    {optionKey, option},
                                    {controlKey, XCB_MOD_MASK_CONTROL}}};
  if ((hotKeyModifiers & ~kFourModifiers) != 0) return std::nullopt;
  unsigned mask = 0;
  for (const auto& row : rows) {
    if ((hotKeyModifiers & row.hotKeyBit) == 0) continue;
    if (row.bit == 0) return std::nullopt;
    mask |= row.bit;
  }
  return static_cast<std::uint16_t>(mask);
}

std::uint16_t ModifierMap::significant() const {
  return static_cast<std::uint16_t>(command | option | XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL);
}

std::vector<std::uint16_t> ModifierMap::lockVariants() const {
  const std::uint16_t caps = XCB_MOD_MASK_LOCK;
  if (numLock == 0) return {0, caps};
  return {0, caps, numLock, static_cast<std::uint16_t>(caps | numLock)};
}

}  // namespace vistrel::keyboard
