#include "KeyboardShortcuts/Shortcut.h"

#include <algorithm>
#include <array>
#include <limits>
#include <unordered_map>

#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"
#include "KeyboardShortcuts/ModifierFlags.h"
#include "KeyboardShortcuts/Name.h"
#include "appkit/NSMenu.h"
#include "base/Json.h"
#include "base/Unicode.h"
#include "carbon/TextInput.h"

namespace vistrel::KeyboardShortcuts {

namespace {

constexpr const char* kKeyCodeMember = "carbonKeyCode";
constexpr const char* kModifiersMember = "carbonModifiers";

const std::int64_t* integerMember(const json::Value& object, std::string_view name) {
  const auto* member = object.member(name);
  return member ? member->integer() : nullptr;
}

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

bool isKeyEquivalentOf(const NSMenuItem& item, const Shortcut& shortcut) {
  const auto character = shortcut.keyToCharacter();
  return character && unicode::areEqual(item.keyEquivalent(), *character) &&
         item.keyEquivalentModifierMask() == shortcut.modifiers();
}

}  // namespace

Shortcut::Shortcut(std::int64_t carbonKeyCode, std::int64_t carbonModifiers)
    : carbonKeyCode_(carbonKeyCode), carbonModifiers_(normalized(carbonModifiers)) {}

Shortcut::Shortcut(Key key, NSEventModifierFlags modifiers) : Shortcut(key.rawValue, carbon(modifiers)) {}

std::optional<Shortcut> Shortcut::fromEvent(const NSEvent& event) {
  if (!event.isKeyEvent() || event.keyCode() == NSEvent::kNoKeyCode) return std::nullopt;
  return Shortcut(event.keyCode(), carbon(event.modifierFlags()));
}

std::optional<Shortcut> Shortcut::fromName(const Name& name) { return readStoredShortcut(name); }

std::optional<Shortcut> Shortcut::decode(std::string_view json) {
  const auto value = json::parse(json);
  if (!value) return std::nullopt;
  const auto* keyCode = integerMember(*value, kKeyCodeMember);
  const auto* modifiers = integerMember(*value, kModifiersMember);
  if (!keyCode || !modifiers) return std::nullopt;
  Shortcut shortcut(*keyCode);
  shortcut.carbonModifiers_ = *modifiers;
  return shortcut;
}

std::string Shortcut::encode() const {
  const json::Object members = {{kKeyCodeMember, {carbonKeyCode_}}, {kModifiersMember, {carbonModifiers_}}};
  return json::write({members});
}

NSEventModifierFlags Shortcut::modifiers() const { return modifierFlags(carbonModifiers_); }

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

bool Shortcut::isTakenBySystem() const {
  const auto taken = CarbonKeyboardShortcuts::systemShortcuts();
  return std::find(taken.begin(), taken.end(), *this) != taken.end();
}

// NOLINTNEXTLINE(misc-no-recursion): as deep as the menu.
std::shared_ptr<NSMenuItem> Shortcut::matchingMenuItem(const NSMenu& menu) const {
  for (const auto& item : menu.itemArray()) {
    if (isKeyEquivalentOf(*item, *this)) return item;
    if (!item->submenu()) continue;
    if (auto match = matchingMenuItem(*item->submenu())) return match;
  }
  return nullptr;
}

}  // namespace vistrel::KeyboardShortcuts
