#include "linux/keyboard/Accelerator.h"

#include <gio/gio.h>
#include <linux/input-event-codes.h>

#include <algorithm>
#include <iterator>
#include <span>
#include <string>

#include "base/KeyCodes.h"

namespace vistrel::keyboard {

namespace {

struct Modifier {
  const char* name;
  std::uint32_t bit;
};

// In small letters.
constexpr Modifier kGtkModifiers[] = {{"primary", controlKey}, {"control", controlKey}, {"ctrl", controlKey},
                                      {"ctl", controlKey},     {"shift", shiftKey},     {"shft", shiftKey},
                                      {"alt", optionKey},      {"mod1", optionKey},     {"meta", optionKey},
                                      {"super", cmdKey},       {"mod4", cmdKey}};
constexpr Modifier kQtModifiers[] = {
    {"ctrl", controlKey}, {"shift", shiftKey}, {"alt", optionKey}, {"meta", cmdKey}};

// GNOME's name for the key left of the digits, whatever the layout prints there.
constexpr const char* kAboveTab = "above_tab";
constexpr std::uint16_t kPlaceAboveTab = KEY_GRAVE;

// What GLib answers for bytes that are no character, and for a part of one.
constexpr gunichar kBrokenCharacter = static_cast<gunichar>(-2);

struct KeyName {
  const char* name;
  xkb_keysym_t symbol;
};

// Names that are not those of the key symbols.
constexpr KeyName kQtKeys[] = {
    {"del", XKB_KEY_Delete},
    {"ins", XKB_KEY_Insert},
    {"pgup", XKB_KEY_Page_Up},
    {"pgdown", XKB_KEY_Page_Down},
    {"esc", XKB_KEY_Escape},
    {"enter", XKB_KEY_KP_Enter},
    {"backtab", XKB_KEY_Tab},
    {"volume up", XKB_KEY_XF86AudioRaiseVolume},
    {"volume down", XKB_KEY_XF86AudioLowerVolume},
    {"volume mute", XKB_KEY_XF86AudioMute},
};

constexpr std::uint32_t kQtKeyBits = 0x01FFFFFF;
struct QtModifierBit {
  std::uint32_t number;
  std::uint32_t bit;
};
constexpr QtModifierBit kQtModifierBits[] = {
    {0x02000000, shiftKey}, {0x04000000, controlKey}, {0x08000000, optionKey}, {0x10000000, cmdKey}};

// Keys that print nothing have numbers of their own; those of printed characters are Unicode's.
struct QtKeyNumber {
  std::uint32_t number;
  xkb_keysym_t symbol;
};
constexpr std::uint32_t kFirstQtKeyNumber = 0x01000000;
constexpr std::uint32_t kQtF1 = 0x01000030;
constexpr std::uint32_t kQtF35 = 0x01000052;
constexpr QtKeyNumber kQtKeyNumbers[] = {
    {0x01000000, XKB_KEY_Escape},        {0x01000001, XKB_KEY_Tab},
    {0x01000002, XKB_KEY_Tab},           {0x01000003, XKB_KEY_BackSpace},
    {0x01000004, XKB_KEY_Return},        {0x01000005, XKB_KEY_KP_Enter},
    {0x01000006, XKB_KEY_Insert},        {0x01000007, XKB_KEY_Delete},
    {0x01000010, XKB_KEY_Home},          {0x01000011, XKB_KEY_End},
    {0x01000012, XKB_KEY_Left},          {0x01000013, XKB_KEY_Up},
    {0x01000014, XKB_KEY_Right},         {0x01000015, XKB_KEY_Down},
    {0x01000016, XKB_KEY_Page_Up},       {0x01000017, XKB_KEY_Page_Down},
    {0x01000058, XKB_KEY_Help},          {0x01000070, XKB_KEY_XF86AudioLowerVolume},
    {0x01000071, XKB_KEY_XF86AudioMute}, {0x01000072, XKB_KEY_XF86AudioRaiseVolume},
};

std::string lowerCased(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return result;
}

std::optional<std::uint32_t> modifierBit(std::span<const Modifier> modifiers, std::string_view name) {
  const auto wanted = lowerCased(name);
  for (const auto& modifier : modifiers) {
    if (wanted == modifier.name) return modifier.bit;
  }
  return std::nullopt;
}

/// The one printed character that a text of UTF-8 is.
std::optional<std::uint32_t> singleCharacter(std::string_view text) {
  const auto* bytes = text.data();
  const auto character = g_utf8_get_char_validated(bytes, static_cast<gssize>(text.size()));
  if (character == 0 || character >= kBrokenCharacter || g_unichar_isgraph(character) == FALSE) return {};
  return g_utf8_next_char(bytes) == bytes + text.size() ? std::optional(character) : std::nullopt;
}

xkb_keysym_t keySymbol(std::span<const KeyName> names, std::string_view name) {
  const auto wanted = lowerCased(name);
  for (const auto& key : names) {
    if (wanted == key.name) return key.symbol;
  }
  if (const auto character = singleCharacter(name)) {
    return xkb_keysym_to_lower(xkb_utf32_to_keysym(*character));
  }
  const std::string exact(name);
  return xkb_keysym_to_lower(xkb_keysym_from_name(exact.c_str(), XKB_KEYSYM_CASE_INSENSITIVE));
}

xkb_keysym_t symbolOfQtKey(std::uint32_t number) {
  if (number == 0) return XKB_KEY_NoSymbol;
  if (number < kFirstQtKeyNumber) return xkb_keysym_to_lower(xkb_utf32_to_keysym(number));
  if (number >= kQtF1 && number <= kQtF35) return XKB_KEY_F1 + (number - kQtF1);
  const auto* key = std::find_if(std::begin(kQtKeyNumbers), std::end(kQtKeyNumbers),
                                 [&](const QtKeyNumber& k) { return k.number == number; });
  return key == std::end(kQtKeyNumbers) ? xkb_keysym_t{XKB_KEY_NoSymbol} : key->symbol;
}

std::optional<Accelerator> withSymbol(xkb_keysym_t symbol, std::uint32_t modifiers) {
  if (symbol == XKB_KEY_NoSymbol) return std::nullopt;
  return Accelerator{symbol, modifiers};
}

}  // namespace

std::optional<Accelerator> parseGtkAccelerator(std::string_view text) {
  std::uint32_t modifiers = 0;
  while (text.starts_with('<')) {
    const auto end = text.find('>');
    if (end == std::string_view::npos) return std::nullopt;
    const auto bit = modifierBit(kGtkModifiers, text.substr(1, end - 1));
    if (!bit) return std::nullopt;
    modifiers |= *bit;
    text.remove_prefix(end + 1);
  }
  if (lowerCased(text) == kAboveTab) return Accelerator{XKB_KEY_NoSymbol, modifiers, kPlaceAboveTab};
  return withSymbol(keySymbol({}, text), modifiers);
}

std::optional<Accelerator> parseQtAccelerator(std::string_view text) {
  std::uint32_t modifiers = 0;
  // The last key may itself be a plus sign.
  for (auto plus = text.find('+'); plus != std::string_view::npos && plus + 1 < text.size();
       plus = text.find('+')) {
    const auto bit = modifierBit(kQtModifiers, text.substr(0, plus));
    if (!bit) return std::nullopt;
    modifiers |= *bit;
    text.remove_prefix(plus + 1);
  }
  return withSymbol(keySymbol(kQtKeys, text), modifiers);
}

std::optional<Accelerator> acceleratorOfQtNumber(std::uint32_t number) {
  std::uint32_t modifiers = 0;
  auto key = number;
  for (const auto& modifier : kQtModifierBits) {
    if ((number & modifier.number) != 0) modifiers |= modifier.bit;
    key &= ~modifier.number;
  }
  if (key > kQtKeyBits) return std::nullopt;
  return withSymbol(symbolOfQtKey(key), modifiers);
}

}  // namespace vistrel::keyboard
