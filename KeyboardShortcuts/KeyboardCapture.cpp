#include "KeyboardShortcuts/KeyboardCapture.h"

#include <utility>

#include "appkit/NSWindow.h"
#include "carbon/SymbolicHotKeys.h"

namespace vistrel::KeyboardShortcuts {

KeyboardCapture::KeyboardCapture(const NSWindow& window) {
  auto& center = NotificationCenter::defaultCenter();
  becameKey_ = center.addObserver(NSWindowDidBecomeKeyNotification, &window,
                                  [this](const Notification&) { capture(); });
  resignedKey_ = center.addObserver(NSWindowDidResignKeyNotification, &window,
                                    [this](const Notification&) { release(); });
  if (window.isKeyWindow()) capture();
}

void KeyboardCapture::capture() {
  // A refusal costs the combinations that the window manager keeps for itself, no more.
  if (!isHeld_) isHeld_ = PushSymbolicHotKeyMode();
}

void KeyboardCapture::release() {
  if (std::exchange(isHeld_, false)) PopSymbolicHotKeyMode();
}

}  // namespace vistrel::KeyboardShortcuts
