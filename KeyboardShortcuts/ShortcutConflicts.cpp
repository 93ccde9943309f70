#include <algorithm>

#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"
#include "KeyboardShortcuts/Shortcut.h"
#include "appkit/NSMenu.h"
#include "base/Unicode.h"

namespace vistrel::KeyboardShortcuts {

namespace {

bool isKeyEquivalentOf(const NSMenuItem& item, const Shortcut& shortcut) {
  const auto character = shortcut.keyToCharacter();
  return character && unicode::areEqual(item.keyEquivalent(), *character) &&
         item.keyEquivalentModifierMask() == shortcut.modifiers();
}

}  // namespace

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
