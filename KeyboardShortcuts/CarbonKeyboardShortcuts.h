#pragma once

#include <functional>
#include <vector>

#include "KeyboardShortcuts/Shortcut.h"
#include "carbon/HotKeys.h"

/// System-wide hot keys: registers shortcuts with the event manager and hands presses and releases to the
/// actions given at registration. Knows nothing of names, storage or pausing. Main thread only.
namespace vistrel::CarbonKeyboardShortcuts {

using KeyboardShortcuts::Shortcut;
using Action = std::function<void(const Shortcut&)>;

/// A refusal is silent and leaves no trace; so is that of a key code or modifiers beyond 32 bits.
void registerShortcut(const Shortcut& shortcut, Action onKeyDown, Action onKeyUp);

/// Ends every registration of an equal shortcut.
void unregister(const Shortcut& shortcut);
void unregisterAll();

/// The combinations of the desktop's own enabled shortcuts, asked anew.
[[nodiscard]] std::vector<Shortcut> systemShortcuts();

/// What the event manager calls; `eventNotHandledErr` for an event that is none of ours.
OSStatus handleHotKeyEvent(EventRef event, void* userData);

}  // namespace vistrel::CarbonKeyboardShortcuts
