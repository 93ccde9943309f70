#include "appkit/NSEvent.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "backend/Backend.h"
#include "base/KeyCodes.h"

namespace vistrel {

class NSEvent::Monitor {
 public:
  Monitor(NSEventMask mask, Handler handler) : mask_(mask), handler_(std::move(handler)) {}
  [[nodiscard]] bool watches(NSEventType type) const { return isActive_ && (mask_ & maskOf(type)) != 0; }
  std::shared_ptr<NSEvent> handle(const std::shared_ptr<NSEvent>& event) {
    // A copy: the handler may drop this monitor, and with it itself.
    const Handler handler = handler_;
    return handler(event);
  }
  void deactivate() { isActive_ = false; }

 private:
  NSEventMask mask_;
  Handler handler_;
  bool isActive_ = true;
};

namespace {

std::vector<std::shared_ptr<NSEvent::Monitor>>& monitors() {
  static std::vector<std::shared_ptr<NSEvent::Monitor>> value;
  return value;
}

// Virtual key codes of F1 to F20, in order.
constexpr std::array<std::uint16_t, 20> kFunctionKeyCodes = {122, 120, 99,  118, 96,  97,  98, 100, 101, 109,
                                                             103, 111, 105, 107, 113, 106, 64, 79,  80,  90};

}  // namespace

std::shared_ptr<NSEvent> NSEvent::mouseEvent(const Mouse& mouse, NSWindow* window) {
  return std::shared_ptr<NSEvent>(new NSEvent(mouse, window));
}

std::shared_ptr<NSEvent> NSEvent::keyEvent(const Key& key, NSWindow* window) {
  Mouse common;
  common.type = key.type;
  common.modifierFlags = key.modifierFlags;
  common.clickCount = 0;
  auto event = std::shared_ptr<NSEvent>(new NSEvent(common, window));
  event->keyCode_ = key.keyCode;
  event->isARepeat_ = key.isARepeat;
  event->characters_ = key.characters;
  return event;
}

bool NSEvent::types(char character, std::uint16_t place) const {
  constexpr unsigned char kFirstBeyondAscii = 0x80;
  const bool isAscii = !characters_.empty() && static_cast<unsigned char>(characters_[0]) < kFirstBeyondAscii;
  return isAscii ? characters_ == std::string(1, character) : keyCode_ == place;
}

Point NSEvent::mouseLocation() { return backend::current().session().pointerLocation(); }

std::optional<NSSpecialKey> NSEvent::specialKey() const {
  if (!isKeyEvent()) return std::nullopt;
  switch (keyCode_) {
    case kVK_Return:
      return NSSpecialKey::CarriageReturn;
    case kVK_Tab:
      return NSSpecialKey::Tab;
    case kVK_Delete:
      return NSSpecialKey::Delete;
    case kVK_ForwardDelete:
      return NSSpecialKey::DeleteForward;
    default:
      break;
  }
  const auto* found = std::find(kFunctionKeyCodes.begin(), kFunctionKeyCodes.end(), keyCode_);
  if (found == kFunctionKeyCodes.end()) return std::nullopt;
  return static_cast<NSSpecialKey>(static_cast<int>(NSSpecialKey::F1) + (found - kFunctionKeyCodes.begin()));
}

std::shared_ptr<NSEvent::Monitor> NSEvent::addLocalMonitor(NSEventMask mask, Handler handler) {
  return monitors().emplace_back(std::make_shared<Monitor>(mask, std::move(handler)));
}

void NSEvent::removeMonitor(const std::shared_ptr<Monitor>& monitor) {
  if (!monitor) return;
  monitor->deactivate();
  std::erase(monitors(), monitor);
}

std::shared_ptr<NSEvent> NSEvent::filter(std::shared_ptr<NSEvent> event) {
  const auto snapshot = monitors();
  for (const auto& monitor : snapshot) {
    if (!event) return nullptr;
    if (monitor->watches(event->type())) event = monitor->handle(event);
  }
  return event;
}

bool NSEvent::asksForMenu() const {
  return type() == NSEventType::RightMouseDown || modifierFlags().contains(NSEventModifierFlags::kControl) ||
         modifierFlags().contains(NSEventModifierFlags::kOption);
}

}  // namespace vistrel
