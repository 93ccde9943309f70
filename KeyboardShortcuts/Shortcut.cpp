#include "KeyboardShortcuts/Shortcut.h"

#include "KeyboardShortcuts/ModifierFlags.h"
#include "KeyboardShortcuts/Storage.h"
#include "base/Json.h"

namespace vistrel::KeyboardShortcuts {

namespace {

constexpr const char* kKeyCodeMember = "carbonKeyCode";
constexpr const char* kModifiersMember = "carbonModifiers";

const std::int64_t* integerMember(const json::Value& object, std::string_view name) {
  const auto* member = object.member(name);
  return member ? member->integer() : nullptr;
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

}  // namespace vistrel::KeyboardShortcuts
