#include "appkit/NSResponder.h"

namespace vistrel {

bool NSResponder::tryToPerform(const Selector& action, NSObject* sender) {
  for (NSResponder* link = this; link; link = link->nextResponder()) {
    if (link->respondsToSelector(action)) return link->perform(action, sender);
  }
  return false;
}

void NSResponder::keyDown(const NSEvent& event) {
  if (NSResponder* next = nextResponder()) next->keyDown(event);
}

void NSResponder::mouseEntered(const NSEvent& event) {
  if (NSResponder* next = nextResponder()) next->mouseEntered(event);
}

void NSResponder::mouseExited(const NSEvent& event) {
  if (NSResponder* next = nextResponder()) next->mouseExited(event);
}

}  // namespace vistrel
