#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"

#include <any>
#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "carbon/SymbolicHotKeys.h"
#include "foundation/ProcessState.h"

namespace vistrel::CarbonKeyboardShortcuts {

namespace {

struct HotKey {
  Shortcut shortcut;
  std::int64_t carbonHotKeyId;
  EventHotKeyRef carbonHotKey;
  Action onKeyDown;
  Action onKeyUp;
};

struct State {
  std::map<std::int64_t, std::shared_ptr<HotKey>> hotKeys;
  OSType hotKeySignature = UTGetOSTypeFromString("ZUMO");
  std::int64_t hotKeyIdCounter = 0;
  EventHandlerRef eventHandler = nullptr;
};

State& state() { return ProcessState<State>::shared(); }

std::optional<std::uint32_t> asUnsigned32(std::int64_t value) {
  if (value < 0 || value > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
  return static_cast<std::uint32_t>(value);
}

EventHotKeyRef takeHotKey(const Shortcut& shortcut, std::int64_t id) {
  const auto keyCode = asUnsigned32(shortcut.carbonKeyCode());
  const auto modifiers = asUnsigned32(shortcut.carbonModifiers());
  const auto number = asUnsigned32(id);
  if (!keyCode || !modifiers || !number) return nullptr;
  EventHotKeyRef hotKey = nullptr;
  const auto status = RegisterEventHotKey(*keyCode, *modifiers, {state().hotKeySignature, *number},
                                          GetEventDispatcherTarget(), 0, &hotKey);
  return status == noErr ? hotKey : nullptr;
}

void installEventHandler() {
  constexpr std::array<EventTypeSpec, 2> kTypes = {{
      {kEventClassKeyboard, kEventHotKeyPressed},
      {kEventClassKeyboard, kEventHotKeyReleased},
  }};
  auto* target = GetEventDispatcherTarget();
  if (state().eventHandler || !target) return;
  InstallEventHandler(target, handleHotKeyEvent, kTypes.size(), kTypes.data(), nullptr,
                      &state().eventHandler);
}

void release(const HotKey& hotKey) {
  UnregisterEventHotKey(hotKey.carbonHotKey);
  state().hotKeys.erase(hotKey.carbonHotKeyId);
}

template <class T>
std::optional<T> entry(const SymbolicHotKeys::value_type& dictionary, const char* key) {
  const auto found = dictionary.find(key);
  if (found == dictionary.end()) return std::nullopt;
  const auto* value = std::any_cast<T>(&found->second);
  return value ? std::optional<T>(*value) : std::nullopt;
}

std::optional<Shortcut> enabledShortcut(const SymbolicHotKeys::value_type& dictionary) {
  if (!entry<bool>(dictionary, kHISymbolicHotKeyEnabled).value_or(false)) return std::nullopt;
  const auto code = entry<std::int64_t>(dictionary, kHISymbolicHotKeyCode);
  const auto modifiers = entry<std::int64_t>(dictionary, kHISymbolicHotKeyModifiers);
  if (!code || !modifiers) return std::nullopt;
  return Shortcut(*code, *modifiers);
}

}  // namespace

void registerShortcut(const Shortcut& shortcut, Action onKeyDown, Action onKeyUp) {
  const auto id = ++state().hotKeyIdCounter;
  auto* carbonHotKey = takeHotKey(shortcut, id);
  if (!carbonHotKey) return;
  HotKey hotKey{shortcut, id, carbonHotKey, std::move(onKeyDown), std::move(onKeyUp)};
  state().hotKeys.emplace(id, std::make_shared<HotKey>(std::move(hotKey)));
  installEventHandler();
}

void unregister(const Shortcut& shortcut) {
  const auto snapshot = state().hotKeys;
  for (const auto& [id, hotKey] : snapshot) {
    if (hotKey->shortcut == shortcut) release(*hotKey);
  }
}

void unregisterAll() {
  const auto snapshot = state().hotKeys;
  for (const auto& [id, hotKey] : snapshot) release(*hotKey);
}

std::vector<Shortcut> systemShortcuts() {
  std::optional<SymbolicHotKeys> array;
  if (CopySymbolicHotKeys(&array) != noErr || !array) return {};
  std::vector<Shortcut> shortcuts;
  for (const auto& dictionary : *array) {
    if (const auto shortcut = enabledShortcut(dictionary)) shortcuts.push_back(*shortcut);
  }
  return shortcuts;
}

OSStatus handleHotKeyEvent(EventRef event, void* /*userData*/) {
  if (!event) return eventNotHandledErr;
  EventHotKeyID id;
  const auto status = GetEventParameter(event, kEventParamDirectObject, typeEventHotKeyID, sizeof id, &id);
  if (status != noErr) return status;
  if (id.signature != state().hotKeySignature) return eventNotHandledErr;
  const auto found = state().hotKeys.find(id.id);
  if (found == state().hotKeys.end()) return eventNotHandledErr;
  // Kept alive: the action may unregister it.
  const auto hotKey = found->second;
  switch (GetEventKind(event)) {
    case kEventHotKeyPressed:
      hotKey->onKeyDown(hotKey->shortcut);
      return noErr;
    case kEventHotKeyReleased:
      hotKey->onKeyUp(hotKey->shortcut);
      return noErr;
    default:
      return eventNotHandledErr;
  }
}

}  // namespace vistrel::CarbonKeyboardShortcuts
