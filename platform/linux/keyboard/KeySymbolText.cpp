#include "linux/keyboard/KeySymbolText.h"

#include <algorithm>
#include <array>

namespace vistrel::keyboard {

namespace {

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

}  // namespace

std::string textOf(xkb_keysym_t symbol) {
  const auto* dead = std::find_if(kDeadKeys.begin(), kDeadKeys.end(),
                                  [&](const DeadKey& key) { return key.symbol == symbol; });
  if (dead != kDeadKeys.end()) return dead->accent;
  std::array<char, kLongestText> buffer = {};
  if (xkb_keysym_to_utf8(symbol, buffer.data(), buffer.size()) <= 0) return {};
  std::string text(buffer.data());
  return text.empty() || isControlCharacter(text) ? std::string() : text;
}

}  // namespace vistrel::keyboard
