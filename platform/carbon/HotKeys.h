#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "carbon/Status.h"

namespace vistrel {

inline constexpr OSType kEventClassKeyboard = 0x6B657962;      // 'keyb'
inline constexpr OSType kEventParamDirectObject = 0x2D2D2D2D;  // '----'
inline constexpr OSType typeEventHotKeyID = 0x686B6964;        // 'hkid'
inline constexpr std::uint32_t kEventHotKeyPressed = 5;
inline constexpr std::uint32_t kEventHotKeyReleased = 6;

/// The four-character code that a text spells; 0 for a text of another length.
[[nodiscard]] OSType UTGetOSTypeFromString(std::string_view text);

/// What a program calls a hot key of its own.
struct EventHotKeyID {
  OSType signature = 0;
  std::uint32_t id = 0;
};

struct EventTypeSpec {
  OSType eventClass = 0;
  std::uint32_t eventKind = 0;
  bool operator==(const EventTypeSpec&) const = default;
};

/// One event of the event manager, alive while its handlers run.
struct Event {
  EventTypeSpec type;
  std::optional<EventHotKeyID> hotKeyId;
};
using EventRef = const Event*;

[[nodiscard]] std::uint32_t GetEventKind(EventRef event);
/// Copies a parameter into `data`. `eventParameterNotFoundErr` when the event has none of that name,
/// `errAEWrongDataType` when it is of another type or size.
OSStatus GetEventParameter(EventRef event, OSType name, OSType type, std::size_t size, void* data);

/// What handlers are attached to; the program has one, its event dispatcher. Null without a backend.
class EventTarget;
using EventTargetRef = EventTarget*;
[[nodiscard]] EventTargetRef GetEventDispatcherTarget();

class EventHandler;
using EventHandlerRef = EventHandler*;
/// Answers `noErr` for an event that it took, `eventNotHandledErr` to pass it on. What it throws is told on
/// standard error and counts as taken.
using EventHandlerProc = OSStatus (*)(EventRef event, void* userData);
/// Has `handler` called for the events of the listed types, before those installed earlier.
OSStatus InstallEventHandler(EventTargetRef target, EventHandlerProc handler, std::size_t typeCount,
                             const EventTypeSpec* types, void* userData, EventHandlerRef* result);

/// A hot key in force.
class EventHotKey;
using EventHotKeyRef = EventHotKey*;
/// Takes a key (virtual key code) with hot-key modifier bits, whichever program is in front. `paramErr`
/// without a target, `eventHotKeyExistsErr` when the window system refuses it.
OSStatus RegisterEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, EventHotKeyID id,
                             EventTargetRef target, std::uint32_t options, EventHotKeyRef* result);
/// `eventHotKeyInvalidErr` for a hot key that is not in force.
OSStatus UnregisterEventHotKey(EventHotKeyRef hotKey);

}  // namespace vistrel
