#include "linux/keyboard/PortalTrigger.h"

#include <array>

#include "base/KeyCodes.h"

namespace vistrel::keyboard {

namespace {

struct Word {
  std::uint32_t modifier;
  const char* text;
};
constexpr std::array<Word, 4> kWords = {
    {{controlKey, "CTRL+"}, {optionKey, "ALT+"}, {shiftKey, "SHIFT+"}, {cmdKey, "LOGO+"}}};
constexpr std::size_t kLongestSymbolName = 64;

std::string words(std::uint32_t modifiers, xkb_keysym_t symbol) {
  std::string text;
  for (const auto& word : kWords) {
    if (modifiers & word.modifier) text += word.text;
  }
  std::array<char, kLongestSymbolName> name{};
  xkb_keysym_get_name(symbol, name.data(), name.size());
  return text + name.data();
}

}  // namespace

std::optional<PortalTrigger> portalTrigger(backend::HotKeyCombination combination, Keymap& keymap) {
  const auto place = evdevFromVirtualKeyCode(combination.keyCode);
  const auto present = place ? keymap.symbolOn(*place) : std::nullopt;
  const auto plain = place ? Keymap::plainSymbolOn(*place) : std::nullopt;
  if (!present || !plain) return std::nullopt;
  return PortalTrigger{words(combination.modifiers, *present), words(combination.modifiers, *plain)};
}

}  // namespace vistrel::keyboard
