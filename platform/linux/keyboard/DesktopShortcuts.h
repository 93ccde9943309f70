#pragma once

#include <optional>
#include <string>
#include <vector>

#include "backend/Keyboard.h"
#include "linux/keyboard/Accelerator.h"
#include "linux/keyboard/Keymap.h"

namespace vistrel::keyboard {

using Accelerators = std::vector<Accelerator>;

/// The shortcuts of a GNOME desktop (window manager, shell, media keys, the user's own), from its settings;
/// none where they are not installed.
[[nodiscard]] std::optional<Accelerators> readGnomeShortcuts();
/// The same of Cinnamon and of MATE; MATE's settings do not tell the user's own.
[[nodiscard]] std::optional<Accelerators> readCinnamonShortcuts();
[[nodiscard]] std::optional<Accelerators> readMateShortcuts();
/// The shortcuts of an Xfce desktop, from its settings daemon; none where it does not answer.
[[nodiscard]] std::optional<Accelerators> readXfceShortcuts();
/// The shortcuts of a KDE desktop, from its shortcut service while that runs, else from its
/// "kglobalshortcutsrc"; none where there is neither.
[[nodiscard]] std::optional<Accelerators> readKdeShortcuts();

/// The shortcuts in the text of a "kglobalshortcutsrc"; a malformed one is left out.
[[nodiscard]] Accelerators parseKdeShortcuts(const std::string& text);

/// What the present desktop tells of its shortcuts: the one that the session names, else one that runs. A
/// shortcut on a key without virtual key code is left out.
struct DesktopShortcuts {
  std::vector<backend::HotKeyCombination> hotKeys;
  bool areAll = false;
};
[[nodiscard]] DesktopShortcuts readDesktopShortcuts(Keymap& keymap);

}  // namespace vistrel::keyboard
