#pragma once

#include <memory>

#include "appkit/NSResponder.h"
#include "foundation/NotificationCenter.h"

namespace vistrel {
class NSView;
class NSWindow;
}  // namespace vistrel

namespace vistrel::KeyboardShortcuts {

/// While it lives and its window has the keyboard and the pointer, every key reaches the window, the window
/// manager's own bindings included. No other program can have the keyboard meanwhile, not even for a menu:
/// who wants another one's leaves the window first, and it lets go.
class KeyboardCapture final : public NSResponder {
 public:
  explicit KeyboardCapture(NSWindow& window);
  KeyboardCapture(const KeyboardCapture&) = delete;
  KeyboardCapture& operator=(const KeyboardCapture&) = delete;
  ~KeyboardCapture() override;

  void mouseEntered(const NSEvent& event) override;
  void mouseExited(const NSEvent& event) override;

 private:
  void capture();
  void release();

  NSWindow& window_;
  std::weak_ptr<NSView> content_;  // it holds the control that holds this
  bool isHeld_ = false;
  ObservationToken becameKey_;
  ObservationToken resignedKey_;
};

}  // namespace vistrel::KeyboardShortcuts
