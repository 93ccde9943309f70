#include "linux/keyboard/Keymap.h"

#include <linux/input-event-codes.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>
#include <array>
#include <set>

#include "base/KeyCodes.h"

namespace vistrel::keyboard {

namespace {

/// A layout of another script may share a few letters with ours.
constexpr std::size_t kEnoughLetters = 20;
constexpr std::uint16_t kHighestEvdevCode = 247;

struct Range {
  std::uint16_t first;
  std::uint16_t last;
};
/// The rows of letters on the keyboard, by Linux event codes, with their neighbours: some layouts put a
/// letter there.
constexpr std::array<Range, 3> kLetterRows = {
    {{KEY_Q, KEY_RIGHTBRACE}, {KEY_A, KEY_APOSTROPHE}, {KEY_Z, KEY_SLASH}}};

constexpr bool isOnKeypad(std::uint16_t evdevCode) {
  return evdevCode == KEY_KPASTERISK || evdevCode == KEY_NUMLOCK ||
         (evdevCode >= KEY_KP7 && evdevCode <= KEY_KPDOT) || evdevCode == KEY_KPENTER ||
         evdevCode == KEY_KPSLASH || evdevCode == KEY_KPEQUAL;
}

xkb_keysym_t symbol(xkb_keymap* keymap, std::uint16_t evdevCode, xkb_layout_index_t layout,
                    xkb_level_index_t level) {
  const xkb_keysym_t* symbols = nullptr;
  const int count =
      xkb_keymap_key_get_syms_by_level(keymap, evdevCode + kX11KeyCodeOffset, layout, level, &symbols);
  return count == 1 ? symbols[0] : static_cast<xkb_keysym_t>(XKB_KEY_NoSymbol);
}

std::optional<xkb_keysym_t> mainSymbol(xkb_keymap* keymap, std::uint16_t evdevCode,
                                       xkb_layout_index_t layout) {
  auto found = symbol(keymap, evdevCode, layout, isOnKeypad(evdevCode) ? 1 : 0);
  if (found == XKB_KEY_NoSymbol) found = symbol(keymap, evdevCode, layout, 0);
  return found == XKB_KEY_NoSymbol ? std::nullopt : std::optional(found);
}

xkb_keymap* plainKeymap(xkb_context* context) {
  const xkb_rule_names names = {"evdev", "pc105", "us", "", ""};
  return xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
}

struct DeadKey {
  xkb_keysym_t symbol;
  const char* accent;
};

constexpr auto kDeadKeys = std::to_array<DeadKey>({
    {XKB_KEY_dead_grave, "`"},
    {XKB_KEY_dead_acute, "´"},
    {XKB_KEY_dead_circumflex, "^"},
    {XKB_KEY_dead_tilde, "~"},
    {XKB_KEY_dead_macron, "¯"},
    {XKB_KEY_dead_breve, "˘"},
    {XKB_KEY_dead_abovedot, "˙"},
    {XKB_KEY_dead_diaeresis, "¨"},
    {XKB_KEY_dead_abovering, "˚"},
    {XKB_KEY_dead_doubleacute, "˝"},
    {XKB_KEY_dead_caron, "ˇ"},
    {XKB_KEY_dead_cedilla, "¸"},
    {XKB_KEY_dead_ogonek, "˛"},
    {XKB_KEY_dead_iota, "ͺ"},
    {XKB_KEY_dead_voiced_sound, "゛"},
    {XKB_KEY_dead_semivoiced_sound, "゜"},
    {XKB_KEY_dead_belowdot, "."},
    {XKB_KEY_dead_hook, "ˀ"},
    {XKB_KEY_dead_horn, "ʼ"},
    {XKB_KEY_dead_stroke, "/"},
    {XKB_KEY_dead_abovecomma, "᾿"},
    {XKB_KEY_dead_abovereversedcomma, "῾"},
    {XKB_KEY_dead_doublegrave, "˵"},
    {XKB_KEY_dead_belowring, "˳"},
    {XKB_KEY_dead_belowmacron, "ˍ"},
    {XKB_KEY_dead_belowcircumflex, "ꞈ"},
    {XKB_KEY_dead_belowtilde, "˷"},
    {XKB_KEY_dead_invertedbreve, "⁀"},
    {XKB_KEY_dead_belowcomma, ","},
    {XKB_KEY_dead_currency, "¤"},
    {XKB_KEY_dead_greek, "µ"},
    {XKB_KEY_dead_lowline, "_"},
    {XKB_KEY_dead_aboveverticalline, "ˈ"},
    {XKB_KEY_dead_belowverticalline, "ˌ"},
});

constexpr std::size_t kLongestText = 8;

bool isControlCharacter(const std::string& text) {
  const auto first = static_cast<unsigned char>(text.front());
  return text.size() == 1 && (first < 0x20 || first == 0x7F);
}

// What a key symbol prints, as UTF-8: its character, or for a dead key the accent standing alone. Empty for
// a symbol that prints nothing.
std::string textOf(xkb_keysym_t symbol) {
  const auto* dead = std::find_if(kDeadKeys.begin(), kDeadKeys.end(),
                                  [&](const DeadKey& key) { return key.symbol == symbol; });
  if (dead != kDeadKeys.end()) return dead->accent;
  std::array<char, kLongestText> buffer = {};
  if (xkb_keysym_to_utf8(symbol, buffer.data(), buffer.size()) <= 0) return {};
  std::string text(buffer.data());
  return text.empty() || isControlCharacter(text) ? std::string() : text;
}

}  // namespace

Keymap::Keymap(x11::X11Connection& connection)
    : connection_(connection), context_(xkb_context_new(XKB_CONTEXT_NO_FLAGS)) {
  subscription_ = connection_.subscribe(x11::X11Connection::Delivery::WhenRead,
                                        [this](const auto& event) { eventCame(event); });
}

void Keymap::eventCame(const xcb_generic_event_t& event) {
  switch (connection_.xkbKind(event)) {
    case XCB_XKB_NEW_KEYBOARD_NOTIFY:
    case XCB_XKB_MAP_NOTIFY:
      server_.reset();
      chosen_ = nullptr;
      break;
    case XCB_XKB_STATE_NOTIFY:
      presentLayout_ = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event).group;
      chosen_ = nullptr;
      break;
    default:
      break;
  }
}

std::optional<std::string> Keymap::text(std::uint16_t evdevCode) {
  if (!update()) return std::nullopt;
  auto text = textOf(symbol(chosen_, evdevCode, chosenLayout_, 0));
  if (text.empty() && isOnKeypad(evdevCode)) text = textOf(symbol(chosen_, evdevCode, chosenLayout_, 1));
  return text;
}

std::optional<xkb_keysym_t> Keymap::symbolOn(std::uint16_t evdevCode) {
  return update() ? mainSymbol(chosen_, evdevCode, chosenLayout_) : std::nullopt;
}

std::optional<xkb_keysym_t> Keymap::plainSymbolOn(std::uint16_t evdevCode) {
  const std::unique_ptr<xkb_context, Unref> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
  const KeymapPointer keymap(context ? plainKeymap(context.get()) : nullptr);
  return keymap ? mainSymbol(keymap.get(), evdevCode, 0) : std::nullopt;
}

// Where Shift changes nothing, it is not what the symbol takes.
std::vector<Keymap::Place> Keymap::find(xkb_keysym_t wanted) {
  std::vector<Place> places;
  if (!update()) return places;
  for (std::uint16_t code = 1; code <= kHighestEvdevCode; ++code) {
    if (symbol(chosen_, code, chosenLayout_, 0) == wanted) {
      places.push_back({code, false});
    } else if (symbol(chosen_, code, chosenLayout_, 1) == wanted) {
      places.push_back({code, !isOnKeypad(code)});
    }
  }
  return places;
}

bool Keymap::update() {
  if (!connection_.isOpen() || !context_) return false;
  connection_.readEvents();
  if (chosen_) return true;
  if (!server_) readKeymap();
  if (server_) chooseLayout();
  return chosen_ != nullptr;
}

void Keymap::readKeymap() {
  const auto device = xkb_x11_get_core_keyboard_device_id(connection_.get());
  if (device < 0) return;
  server_.reset(
      xkb_x11_keymap_new_from_device(context_.get(), connection_.get(), device, XKB_KEYMAP_COMPILE_NO_FLAGS));
  if (!server_) return;
  const std::unique_ptr<xkb_state, Unref> state(
      xkb_x11_state_new_from_device(server_.get(), connection_.get(), device));
  if (state) presentLayout_ = xkb_state_serialize_layout(state.get(), XKB_STATE_LAYOUT_EFFECTIVE);
}

void Keymap::chooseLayout() {
  chosen_ = server_.get();
  chosenLayout_ = presentLayout_;
  if (typesLatin(chosenLayout_)) return;
  const auto count = xkb_keymap_num_layouts(server_.get());
  for (chosenLayout_ = 0; chosenLayout_ < count; ++chosenLayout_) {
    if (typesLatin(chosenLayout_)) return;
  }
  if (!plain_) plain_.reset(plainKeymap(context_.get()));
  chosen_ = plain_.get();
  chosenLayout_ = 0;
}

bool Keymap::typesLatin(xkb_layout_index_t layout) const {
  std::set<xkb_keysym_t> letters;
  for (const auto& row : kLetterRows) {
    for (auto code = row.first; code <= row.last; ++code) {
      const auto found = symbol(server_.get(), code, layout, 0);
      if (found >= XKB_KEY_a && found <= XKB_KEY_z) letters.insert(found);
    }
  }
  return letters.size() >= kEnoughLetters;
}

}  // namespace vistrel::keyboard
