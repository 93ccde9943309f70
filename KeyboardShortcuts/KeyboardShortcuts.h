#pragma once

#include <functional>
#include <initializer_list>
#include <optional>
#include <vector>

#include "KeyboardShortcuts/Name.h"
#include "KeyboardShortcuts/Shortcut.h"

/// Shortcuts of the user's choice, by name: what is stored for a name, the hot keys in force, and the actions
/// that run on them. The store alone says which combination belongs to a name. Main thread only.
namespace vistrel::KeyboardShortcuts {

using Action = std::function<void()>;

/// Posted without an object whenever a name's stored shortcut changed; the user info holds the `Name` under
/// "name".
inline constexpr const char* shortcutByNameDidChange = "KeyboardShortcuts_shortcutByNameDidChange";
inline constexpr const char* kNameInUserInfo = "name";

/// Adds an action to those that run when the name's shortcut is pressed, and registers the shortcut if there
/// is one.
void onKeyDown(const Name& name, Action action);
/// The same for the release.
void onKeyUp(const Name& name, Action action);

[[nodiscard]] std::optional<Shortcut> getShortcut(const Name& name);
/// Stores a shortcut, or removes the stored one.
void setShortcut(const std::optional<Shortcut>& shortcut, const Name& name);
/// Gives each name its default shortcut again, or none.
void reset(const std::vector<Name>& names);
void reset(std::initializer_list<Name> names);

/// Registers the name's shortcut, or lets go of it; the store and the actions stay.
void enable(const Name& name);
void disable(const Name& name);
/// Lets go of every hot key and forgets every action; the store stays.
void removeAllHandlers();

/// While paused no action runs; the hot keys stay registered.
[[nodiscard]] bool isPaused();
void setPaused(bool isPaused);

// The steps of the operations above, for the recorder and for `Name`.

/// A hot key is asked for once a distinct shortcut; a refused one is not asked for again until unregistered.
void registerIfNeeded(const Shortcut& shortcut);
void storeShortcut(const Shortcut& shortcut, const Name& name);
/// Does nothing for a name without a readable stored shortcut.
void removeStoredShortcut(const Name& name);

}  // namespace vistrel::KeyboardShortcuts
