#include "linux/keyboard/DesktopShortcuts.h"

#include <array>
#include <cstdlib>
#include <sstream>
#include <string_view>

#include "base/KeyCodes.h"
#include "linux/keyboard/SessionBus.h"

namespace vistrel::keyboard {

namespace {

struct DesktopKind {
  const char* name;     ///< in XDG_CURRENT_DESKTOP
  const char* service;  ///< on the session bus while it runs
  std::optional<Accelerators> (*read)();
};

constexpr std::array<DesktopKind, 6> kDesktops = {{
    {"XFCE", "org.xfce.SessionManager", readXfceShortcuts},
    {"KDE", "org.kde.kglobalaccel", readKdeShortcuts},
    {"GNOME", "org.gnome.Shell", readGnomeShortcuts},
    {"Unity", "com.canonical.Unity", readGnomeShortcuts},
    {"Budgie", "org.budgie_desktop.Panel", readGnomeShortcuts},
    {"Pantheon", "org.pantheon.gala", readGnomeShortcuts},
}};

/// The names in a list with colons between, as XDG_CURRENT_DESKTOP holds them.
bool isNamed(const std::string& list, std::string_view name) {
  std::istringstream names(list);
  for (std::string each; std::getline(names, each, ':');) {
    if (each == name) return true;
  }
  return false;
}

std::optional<Accelerators> readPresentDesktop() {
  const char* value = std::getenv("XDG_CURRENT_DESKTOP");
  const std::string names = value ? value : "";
  for (const auto& desktop : kDesktops) {
    if (isNamed(names, desktop.name)) return desktop.read();
  }
  const SessionBus bus;
  for (const auto& desktop : kDesktops) {
    if (bus.hasOwner(desktop.service)) return desktop.read();
  }
  return std::nullopt;
}

std::optional<Keymap::Place> placeOf(const Accelerator& accelerator, Keymap& keymap) {
  if (accelerator.place != 0) return Keymap::Place{accelerator.place, false};
  return keymap.find(accelerator.symbol);
}

std::optional<backend::HotKeyCombination> hotKeyOf(const Accelerator& accelerator, Keymap& keymap) {
  const auto place = placeOf(accelerator, keymap);
  const auto code = place ? virtualKeyCodeFromEvdev(place->evdevCode) : std::nullopt;
  if (!code) return std::nullopt;
  return backend::HotKeyCombination{*code, accelerator.modifiers | (place->isShifted ? shiftKey : 0)};
}

}  // namespace

std::optional<std::vector<backend::HotKeyCombination>> readDesktopShortcuts(Keymap& keymap) {
  const auto accelerators = readPresentDesktop();
  if (!accelerators) return std::nullopt;
  std::vector<backend::HotKeyCombination> hotKeys;
  for (const auto& accelerator : *accelerators) {
    if (const auto hotKey = hotKeyOf(accelerator, keymap)) hotKeys.push_back(*hotKey);
  }
  return hotKeys;
}

}  // namespace vistrel::keyboard
