#include "carbon/HotKeys.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "backend/Backend.h"
#include "base/Log.h"
#include "foundation/ProcessState.h"

namespace vistrel {

class EventHandler {
 public:
  EventHandler(EventHandlerProc proc, std::vector<EventTypeSpec> types, void* userData)
      : proc_(proc), types_(std::move(types)), userData_(userData) {}
  [[nodiscard]] bool takes(const EventTypeSpec& type) const {
    return std::find(types_.begin(), types_.end(), type) != types_.end();
  }
  [[nodiscard]] OSStatus call(const Event& event) const { return proc_(&event, userData_); }

 private:
  EventHandlerProc proc_;
  std::vector<EventTypeSpec> types_;
  void* userData_;
};

class EventTarget {
 public:
  EventHandlerRef install(std::shared_ptr<EventHandler> handler) {
    return handlers_.emplace_back(std::move(handler)).get();
  }
  void dispatch(const Event& event) const {
    const auto snapshot = handlers_;
    for (auto handler = snapshot.rbegin(); handler != snapshot.rend(); ++handler) {
      if ((*handler)->takes(event.type) && (*handler)->call(event) != eventNotHandledErr) return;
    }
  }

 private:
  std::vector<std::shared_ptr<EventHandler>> handlers_;
};

class EventHotKey {
 public:
  EventHotKey(std::uint32_t token, EventHotKeyID id) : token_(token), id_(id) {}
  [[nodiscard]] std::uint32_t token() const { return token_; }
  [[nodiscard]] EventHotKeyID id() const { return id_; }

 private:
  std::uint32_t token_;
  EventHotKeyID id_;
};

namespace {

struct EventManager {
  EventTarget dispatcher;
  std::vector<std::unique_ptr<EventHotKey>> hotKeys;
  std::uint32_t lastToken = 0;
  backend::HotKeys* heard = nullptr;
};

EventManager& manager() { return ProcessState<EventManager>::shared(); }

void hotKeyChanged(std::uint32_t token, backend::HotKeyPhase phase) {
  const auto& hotKeys = manager().hotKeys;
  const auto found = std::find_if(hotKeys.begin(), hotKeys.end(),
                                  [&](const auto& hotKey) { return hotKey->token() == token; });
  if (found == hotKeys.end()) return;
  const auto kind = phase == backend::HotKeyPhase::Pressed ? kEventHotKeyPressed : kEventHotKeyReleased;
  const Event event{{kEventClassKeyboard, kind}, (*found)->id()};
  // Nothing may be thrown into the main loop, which is a library's.
  runGuarded("a hot key's action", [&] { manager().dispatcher.dispatch(event); });
}

void listen(backend::HotKeys& host) {
  if (std::exchange(manager().heard, &host) != &host) host.setHandler(hotKeyChanged);
}

}  // namespace

OSType UTGetOSTypeFromString(std::string_view text) {
  if (text.size() != sizeof(OSType)) return 0;
  OSType code = 0;
  for (const char character : text) code = code << 8U | static_cast<unsigned char>(character);
  return code;
}

std::uint32_t GetEventKind(EventRef event) { return event->type.eventKind; }

OSStatus GetEventParameter(EventRef event, OSType name, OSType type, std::size_t size, void* data) {
  if (name != kEventParamDirectObject || !event->hotKeyId) return eventParameterNotFoundErr;
  if (type != typeEventHotKeyID || size != sizeof(EventHotKeyID)) return errAEWrongDataType;
  std::memcpy(data, &*event->hotKeyId, size);
  return noErr;
}

EventTargetRef GetEventDispatcherTarget() { return backend::isInstalled() ? &manager().dispatcher : nullptr; }

OSStatus InstallEventHandler(EventTargetRef target, EventHandlerProc handler, std::size_t typeCount,
                             const EventTypeSpec* types, void* userData, EventHandlerRef* result) {
  if (!target || !handler) return paramErr;
  std::vector<EventTypeSpec> list(types, types + typeCount);
  *result = target->install(std::make_shared<EventHandler>(handler, std::move(list), userData));
  return noErr;
}

OSStatus RegisterEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, EventHotKeyID id,
                             EventTargetRef target, std::uint32_t /*options*/, EventHotKeyRef* result) {
  if (!target) return paramErr;
  auto& host = backend::current().hotKeys();
  listen(host);
  const auto token = ++manager().lastToken;
  if (!host.grab(token, {keyCode, modifiers})) return eventHotKeyExistsErr;
  *result = manager().hotKeys.emplace_back(std::make_unique<EventHotKey>(token, id)).get();
  return noErr;
}

OSStatus UnregisterEventHotKey(EventHotKeyRef hotKey) {
  auto& hotKeys = manager().hotKeys;
  const auto found = std::find_if(hotKeys.begin(), hotKeys.end(),
                                  [&](const auto& candidate) { return candidate.get() == hotKey; });
  if (found == hotKeys.end()) return eventHotKeyInvalidErr;
  backend::current().hotKeys().release(hotKey->token());
  hotKeys.erase(found);
  return noErr;
}

}  // namespace vistrel
