#include "KeyboardShortcuts/RecorderTexts.h"

#include <string_view>

#include "KeyboardShortcuts/resource_bundle_accessor.h"

namespace vistrel::KeyboardShortcuts::text {

namespace {

constexpr std::string_view kPlaceholder = "%@";

std::string localized(const char* key) { return resourceBundle().localizedString(key); }

}  // namespace

std::string recordShortcut() { return localized("record_shortcut"); }

std::string pressShortcut() { return localized("press_shortcut"); }

std::string usedByMenuItem(const std::string& title) {
  std::string text = localized("keyboard_shortcut_used_by_menu_item");
  if (const auto place = text.find(kPlaceholder); place != std::string::npos) {
    text.replace(place, kPlaceholder.size(), title);
  }
  return text;
}

std::string usedBySystem() { return localized("keyboard_shortcut_used_by_system"); }

std::string canBeChanged() { return localized("keyboard_shortcuts_can_be_changed"); }

}  // namespace vistrel::KeyboardShortcuts::text
