#include "linux/keyboard/DesktopShortcuts.h"

#include <array>

#include "base/KeyCodes.h"
#include "linux/DesktopName.h"
#include "linux/keyboard/SessionBus.h"

namespace vistrel::keyboard {

namespace {

struct DesktopKind {
  const char* name;     ///< in XDG_CURRENT_DESKTOP
  const char* service;  ///< on the session bus while it runs
  std::optional<Accelerators> (*read)();
  bool tellsAll = true;
};

constexpr std::array<DesktopKind, 9> kDesktops = {{
    {"XFCE", "org.xfce.SessionManager", readXfceShortcuts},
    {"KDE", "org.kde.kglobalaccel", readKdeShortcuts},
    {"GNOME", "org.gnome.Shell", readGnomeShortcuts},
    {"Unity", "com.canonical.Unity", readGnomeShortcuts},
    {"Budgie", "org.budgie_desktop.Panel", readGnomeShortcuts},
    {"Pantheon", "org.pantheon.gala", readGnomeShortcuts},
    {"X-Cinnamon", "org.Cinnamon", readCinnamonShortcuts},
    {"Cinnamon", "org.Cinnamon", readCinnamonShortcuts},
    {"MATE", "org.mate.SettingsDaemon", readMateShortcuts, false},
}};

const DesktopKind* presentDesktop() {
  for (const auto& desktop : kDesktops) {
    if (desktop::isDesktop(desktop.name)) return &desktop;
  }
  const SessionBus bus;
  for (const auto& desktop : kDesktops) {
    if (bus.hasOwner(desktop.service)) return &desktop;
  }
  return nullptr;
}

std::vector<Keymap::Place> placesOf(const Accelerator& accelerator, Keymap& keymap) {
  if (accelerator.place != 0) return {{accelerator.place, false}};
  return keymap.find(accelerator.symbol);
}

void append(const Accelerator& accelerator, Keymap& keymap, std::vector<backend::HotKeyCombination>& to) {
  for (const auto& place : placesOf(accelerator, keymap)) {
    const auto code = virtualKeyCodeFromEvdev(place.evdevCode);
    if (code) to.push_back({*code, accelerator.modifiers | (place.isShifted ? shiftKey : 0)});
  }
}

}  // namespace

DesktopShortcuts readDesktopShortcuts(Keymap& keymap) {
  DesktopShortcuts told;
  const auto* desktop = presentDesktop();
  const auto accelerators = desktop ? desktop->read() : std::nullopt;
  if (!accelerators) return told;
  for (const auto& accelerator : *accelerators) append(accelerator, keymap, told.hotKeys);
  told.areAll = desktop->tellsAll;
  return told;
}

}  // namespace vistrel::keyboard
