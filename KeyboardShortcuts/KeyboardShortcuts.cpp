#include "KeyboardShortcuts/KeyboardShortcuts.h"

#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"
#include "KeyboardShortcuts/Name.h"
#include "base/Log.h"
#include "foundation/NotificationCenter.h"
#include "foundation/ProcessState.h"

namespace vistrel::KeyboardShortcuts {

namespace {

using ActionTable = std::unordered_map<Name, std::vector<Action>>;

struct State {
  bool isPaused = false;
  std::unordered_set<Shortcut> registeredShortcuts;
  ActionTable keyDownActions;
  ActionTable keyUpActions;
};

State& state() { return ProcessState<State>::shared(); }

void runActions(const ActionTable& table, const Shortcut& shortcut) {
  if (state().isPaused) return;
  // Over a copy: an action may add actions, or remove all of them.
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
  const ActionTable snapshot = table;
  for (const auto& [name, actions] : snapshot) {
    if (readStoredShortcut(name) != shortcut) continue;
    for (const auto& action : actions) runGuarded("a shortcut's action", action);
  }
}

void handleKeyDown(const Shortcut& shortcut) { runActions(state().keyDownActions, shortcut); }
void handleKeyUp(const Shortcut& shortcut) { runActions(state().keyUpActions, shortcut); }

void unregister(const Shortcut& shortcut) {
  CarbonKeyboardShortcuts::unregister(shortcut);
  state().registeredShortcuts.erase(shortcut);
}

void postShortcutChange(const Name& name) {
  NotificationCenter::defaultCenter().post(shortcutByNameDidChange, nullptr, {{kNameInUserInfo, name}});
}

void addAction(ActionTable& table, const Name& name, Action action) {
  table[name].push_back(std::move(action));
  enable(name);
}

template <class Names>
void resetEach(const Names& names) {
  for (const auto& name : names) setShortcut(name.defaultShortcut(), name);
}

}  // namespace

void onKeyDown(const Name& name, Action action) {
  addAction(state().keyDownActions, name, std::move(action));
}

void onKeyUp(const Name& name, Action action) { addAction(state().keyUpActions, name, std::move(action)); }

std::optional<Shortcut> getShortcut(const Name& name) { return readStoredShortcut(name); }

void setShortcut(const std::optional<Shortcut>& shortcut, const Name& name) {
  if (shortcut) {
    storeShortcut(*shortcut, name);
  } else {
    removeStoredShortcut(name);
  }
}

void reset(const std::vector<Name>& names) { resetEach(names); }

void reset(std::initializer_list<Name> names) { resetEach(names); }

void enable(const Name& name) {
  if (const auto shortcut = readStoredShortcut(name)) registerIfNeeded(*shortcut);
}

void disable(const Name& name) {
  if (const auto shortcut = readStoredShortcut(name)) unregister(*shortcut);
}

void removeAllHandlers() {
  CarbonKeyboardShortcuts::unregisterAll();
  state().keyDownActions.clear();
  state().keyUpActions.clear();
  state().registeredShortcuts.clear();
}

bool isPaused() { return state().isPaused; }

void setPaused(bool isPaused) { state().isPaused = isPaused; }

void registerIfNeeded(const Shortcut& shortcut) {
  if (state().registeredShortcuts.contains(shortcut)) return;
  CarbonKeyboardShortcuts::registerShortcut(shortcut, handleKeyDown, handleKeyUp);
  state().registeredShortcuts.insert(shortcut);
}

void storeShortcut(const Shortcut& shortcut, const Name& name) {
  if (const auto old = readStoredShortcut(name)) unregister(*old);
  registerIfNeeded(shortcut);
  writeShortcut(shortcut, name);
  postShortcutChange(name);
}

void removeStoredShortcut(const Name& name) {
  const auto shortcut = readStoredShortcut(name);
  if (!shortcut) return;
  writeNoShortcut(name);
  unregister(*shortcut);
  postShortcutChange(name);
}

}  // namespace vistrel::KeyboardShortcuts
