#include <array>
#include <limits>
#include <unordered_map>

#include "KeyboardShortcuts/ModifierFlags.h"
#include "KeyboardShortcuts/Shortcut.h"
#include "base/Unicode.h"
#include "carbon/TextInput.h"

namespace vistrel::KeyboardShortcuts {

namespace {

constexpr const char* kReplacementCharacter = "\uFFFD";
constexpr char16_t kFirstFunctionKeyCharacter = 0xF704;

constexpr std::array<Key, 20> kFunctionKeys = {
    Key::f1,  Key::f2,  Key::f3,  Key::f4,  Key::f5,  Key::f6,  Key::f7,  Key::f8,  Key::f9,  Key::f10,
    Key::f11, Key::f12, Key::f13, Key::f14, Key::f15, Key::f16, Key::f17, Key::f18, Key::f19, Key::f20};

using Texts = std::unordered_map<Key, std::string>;

Texts makeSpecialKeySymbols() {
  Texts texts = {
      {Key::return_, "↩"},    {Key::delete_, "⌫"},    {Key::deleteForward, "⌦"}, {Key::end, "↘"},
      {Key::escape, "⎋"},     {Key::help, "?\u20DD"}, {Key::home, "↖"},          {Key::space, "⎵"},
      {Key::tab, "⇥"},        {Key::pageUp, "⇞"},     {Key::pageDown, "⇟"},      {Key::upArrow, "↑"},
      {Key::rightArrow, "→"}, {Key::downArrow, "↓"},  {Key::leftArrow, "←"},
  };
  for (std::size_t i = 0; i < kFunctionKeys.size(); ++i) {
    texts.emplace(kFunctionKeys[i], std::string("F").append(std::to_string(i + 1)));
  }
  return texts;
}

Texts makeMenuKeyEquivalents() {
  Texts texts = {{Key::space, " "}};
  for (std::size_t i = 0; i < kFunctionKeys.size(); ++i) {
    const auto unit = static_cast<char16_t>(kFirstFunctionKeyCharacter + i);
    texts.emplace(kFunctionKeys[i], unicode::fromUtf16Unit(unit));
  }
  return texts;
}

const std::string* specialKeySymbol(Key key) {
  static const Texts texts = makeSpecialKeySymbols();
  const auto found = texts.find(key);
  return found == texts.end() ? nullptr : &found->second;
}

const std::string* menuKeyEquivalent(Key key) {
  static const Texts texts = makeMenuKeyEquivalents();
  const auto found = texts.find(key);
  return found == texts.end() ? nullptr : &found->second;
}

std::optional<std::string> translate(std::int64_t keyCode) {
  if (keyCode < 0 || keyCode > std::numeric_limits<std::uint16_t>::max()) return std::nullopt;
  const auto source = TISCopyCurrentASCIICapableKeyboardLayoutInputSource();
  if (!source) return std::nullopt;
  std::string text;
  const auto status = UCKeyTranslate(source->unicodeKeyLayoutData(), static_cast<std::uint16_t>(keyCode),
                                     kUCKeyActionDisplay, &text);
  if (status != noErr) return std::nullopt;
  return text;
}

}  // namespace

std::optional<std::string> Shortcut::keyToCharacter() const {
  if (const auto* symbol = specialKeySymbol(key())) return *symbol;
  return translate(carbonKeyCode_);
}

std::string Shortcut::description() const {
  const auto character = keyToCharacter();
  const auto keyText = character ? unicode::upperCased(*character) : kReplacementCharacter;
  return KeyboardShortcuts::description(modifiers()) + keyText;
}

std::string Shortcut::keyEquivalentText() const {
  if (const auto* text = menuKeyEquivalent(key())) return *text;
  const auto character = keyToCharacter().value_or("");
  return unicode::characterCount(character) < 2 ? character : "";
}

}  // namespace vistrel::KeyboardShortcuts
