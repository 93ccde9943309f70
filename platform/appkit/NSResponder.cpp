#include "appkit/NSResponder.h"

#include <array>
#include <utility>

#include "appkit/NSEvent.h"

namespace vistrel {

namespace {

using Handler = void (NSResponder::*)(const NSEvent&);
constexpr std::array<std::pair<NSEventType, Handler>, 6> kHandlers = {{
    {NSEventType::KeyUp, &NSResponder::keyUp},
    {NSEventType::RightMouseDown, &NSResponder::rightMouseDown},
    {NSEventType::RightMouseDragged, &NSResponder::rightMouseDragged},
    {NSEventType::RightMouseUp, &NSResponder::rightMouseUp},
    {NSEventType::ScrollWheel, &NSResponder::scrollWheel},
    {NSEventType::Magnify, &NSResponder::magnifyWithEvent},
}};

}  // namespace

bool NSResponder::tryToPerform(const Selector& action, NSObject* sender) {
  for (NSResponder* link = this; link; link = link->nextResponder()) {
    if (link->respondsToSelector(action)) return link->perform(action, sender);
  }
  return false;
}

void NSResponder::keyDown(const NSEvent& event) {
  if (NSResponder* next = nextResponder()) next->keyDown(event);
}

void NSResponder::keyUp(const NSEvent& event) {
  if (NSResponder* next = nextResponder()) next->keyUp(event);
}

void NSResponder::rightMouseDown(const NSEvent& event) {
  if (NSResponder* next = nextResponder()) next->rightMouseDown(event);
}

void NSResponder::rightMouseDragged(const NSEvent& event) {
  if (NSResponder* next = nextResponder()) next->rightMouseDragged(event);
}

void NSResponder::rightMouseUp(const NSEvent& event) {
  if (NSResponder* next = nextResponder()) next->rightMouseUp(event);
}

void NSResponder::scrollWheel(const NSEvent& event) {
  if (NSResponder* next = nextResponder()) next->scrollWheel(event);
}

void NSResponder::magnifyWithEvent(const NSEvent& event) {
  if (NSResponder* next = nextResponder()) next->magnifyWithEvent(event);
}

void NSResponder::mouseEntered(const NSEvent& event) {
  if (NSResponder* next = nextResponder()) next->mouseEntered(event);
}

void NSResponder::mouseExited(const NSEvent& event) {
  if (NSResponder* next = nextResponder()) next->mouseExited(event);
}

bool NSResponder::performKeyEquivalent(const NSEvent& event) {
  NSResponder* next = nextResponder();
  return next && next->performKeyEquivalent(event);
}

bool NSResponder::dispatch(const NSEvent& event) {
  if (event.type() == NSEventType::KeyDown) return performKeyEquivalent(event);
  for (const auto& [type, handler] : kHandlers) {
    if (event.type() == type) (this->*handler)(event);
  }
  return false;
}

}  // namespace vistrel
