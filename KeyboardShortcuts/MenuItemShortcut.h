#pragma once

#include <memory>
#include <optional>

#include "KeyboardShortcuts/Name.h"
#include "KeyboardShortcuts/Shortcut.h"
#include "appkit/NSMenuItem.h"

namespace vistrel::KeyboardShortcuts {

/// Shows the shortcut as the item's key equivalent, or none. On a queue of an XPC activity the item changes
/// in a later turn of the main loop, elsewhere at once.
void setShortcut(const std::shared_ptr<NSMenuItem>& item, const std::optional<Shortcut>& shortcut);

/// Shows the stored shortcut of the name, and follows it for the item's life or until the next call. Without
/// a name the item shows none and follows nothing.
void setShortcutFor(const std::shared_ptr<NSMenuItem>& item, const std::optional<Name>& name);

}  // namespace vistrel::KeyboardShortcuts
