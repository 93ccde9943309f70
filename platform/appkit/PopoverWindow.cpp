#include "appkit/PopoverWindow.h"

#include "appkit/NSPopover.h"
#include "base/KeyCodes.h"

namespace vistrel {

PopoverWindow::PopoverWindow(NSPopover& popover, const Rect& contentRect)
    : NSWindow(NSWindowKind::Popover, contentRect, static_cast<unsigned>(NSWindowStyleMask::Borderless)),
      popover_(&popover) {}

void PopoverWindow::performClose(NSObject* sender) {
  if (popover_) popover_->performClose(sender);
}

void PopoverWindow::dragDidBegin() {
  if (popover_) popover_->tearOff();
}

// The camera runs only while its picture is on the screen.
void PopoverWindow::didLeaveScreen(backend::Hiding /*how*/) { performClose(nullptr); }

bool PopoverWindow::sendEvent(const NSEvent& event) {
  const bool isEscape = event.type() == NSEventType::KeyDown && event.keyCode() == kVK_Escape;
  if (!isEscape) return NSWindow::sendEvent(event);
  if (popover_ && !popover_->isDetached()) popover_->performClose(this);
  return true;
}

}  // namespace vistrel
