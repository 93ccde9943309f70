#include "KeyboardShortcuts/resource_bundle_accessor.h"

#include <string>
#include <string_view>

#include "base/Log.h"

namespace vistrel::KeyboardShortcuts {

namespace {

constexpr const char* kBundleName = "KeyboardShortcuts_KeyboardShortcuts";
constexpr std::string_view kPlaceholder = "%@";

Bundle findOrStop() {
  auto found = findResourceBundle();
  if (!found) {
    fatalError(std::string("KeyboardShortcuts/resource_bundle_accessor: unable to find bundle named ") +
               kBundleName);
  }
  return *found;
}

std::string localized(const char* key) { return resourceBundle().localizedString(key); }

}  // namespace

std::optional<Bundle> findResourceBundle() {
  // The program is one executable: the bundle that holds this code is the main one.
  const Bundle& main = Bundle::main();
  const Bundle& ofThisCode = main;
  for (const auto& folder : {main.resourcePath(), ofThisCode.resourcePath(), main.bundlePath()}) {
    if (auto bundle = Bundle::open(folder + "/" + kBundleName + ".bundle")) return bundle;
  }
  return std::nullopt;
}

const Bundle& resourceBundle() {
  static const Bundle bundle = findOrStop();
  return bundle;
}

namespace text {

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

}  // namespace text

}  // namespace vistrel::KeyboardShortcuts
