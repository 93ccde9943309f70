#pragma once

#include "foundation/NotificationCenter.h"

namespace vistrel {
class NSWindow;
}

namespace vistrel::KeyboardShortcuts {

/// While it lives and its window has the keyboard, every key reaches the window, the window manager's own
/// bindings included. It lets go as soon as the window loses the keyboard, so that no other program goes
/// without.
class KeyboardCapture {
 public:
  explicit KeyboardCapture(const NSWindow& window);
  KeyboardCapture(const KeyboardCapture&) = delete;
  KeyboardCapture& operator=(const KeyboardCapture&) = delete;
  ~KeyboardCapture() { release(); }

 private:
  void capture();
  void release();

  bool isHeld_ = false;
  ObservationToken becameKey_;
  ObservationToken resignedKey_;
};

}  // namespace vistrel::KeyboardShortcuts
