#include "KeyboardShortcuts/Name.h"

#include <utility>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "foundation/UserDefaults.h"

namespace vistrel::KeyboardShortcuts {

Name::Name(std::string rawValue, std::optional<Shortcut> defaultShortcut)
    : rawValue_(std::move(rawValue)), defaultShortcut_(defaultShortcut) {
  if (defaultShortcut_ && !hasStoredValue(*this)) storeShortcut(*defaultShortcut_, *this);
}

std::string storageKey(const Name& name) { return "KeyboardShortcuts_" + name.rawValue(); }

std::optional<Shortcut> readStoredShortcut(const Name& name) {
  const auto text = UserDefaults::standard().stringForKey(storageKey(name));
  return text ? Shortcut::decode(*text) : std::nullopt;
}

bool hasStoredValue(const Name& name) {
  return UserDefaults::standard().objectForKey(storageKey(name)).has_value();
}

void writeShortcut(const Shortcut& shortcut, const Name& name) {
  UserDefaults::standard().setString(shortcut.encode(), storageKey(name));
}

void writeNoShortcut(const Name& name) { UserDefaults::standard().setBool(false, storageKey(name)); }

}  // namespace vistrel::KeyboardShortcuts
