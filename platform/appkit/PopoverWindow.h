#pragma once

#include "appkit/NSWindow.h"

namespace vistrel {

class NSPopover;

/// The window under a popover: turns what the user does to it into the popover's own operations.
class PopoverWindow final : public NSWindow {
 public:
  PopoverWindow(NSPopover& popover, const Rect& contentRect);

  void performClose(NSObject* sender) override;
  void dragDidBegin() override;
  void didLeaveScreen(backend::Hiding how) override;
  bool sendEvent(const NSEvent& event) override;

  /// The window may outlive its popover by a turn of the loop, in which reports still come in.
  void popoverWillEnd() { popover_ = nullptr; }

 private:
  NSPopover* popover_;
};

}  // namespace vistrel
