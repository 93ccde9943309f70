#include "KeyboardShortcuts/KeyboardCapture.h"

#include <utility>

#include "appkit/NSView.h"
#include "appkit/NSWindow.h"
#include "carbon/SymbolicHotKeys.h"

namespace vistrel::KeyboardShortcuts {

KeyboardCapture::KeyboardCapture(NSWindow& window) : window_(window), content_(window.contentView()) {
  auto& center = NotificationCenter::defaultCenter();
  becameKey_ = center.addObserver(NSWindowDidBecomeKeyNotification, &window,
                                  [this](const Notification&) { capture(); });
  resignedKey_ = center.addObserver(NSWindowDidResignKeyNotification, &window,
                                    [this](const Notification&) { release(); });
  constexpr auto kOptions = NSTrackingArea::kMouseEnteredAndExited | NSTrackingArea::kActiveAlways;
  window.contentView()->addTrackingArea({window.contentView()->visibleRect(), kOptions, this});
  capture();
}

KeyboardCapture::~KeyboardCapture() {
  if (const auto content = content_.lock()) content->removeTrackingAreasOf(*this);
  release();
}

void KeyboardCapture::mouseEntered(const NSEvent& /*event*/) { capture(); }

void KeyboardCapture::mouseExited(const NSEvent& /*event*/) { release(); }

void KeyboardCapture::capture() {
  if (isHeld_ || !window_.isKeyWindow() || !window_.isPointerInside()) return;
  // A refusal costs the combinations that the window manager keeps for itself, no more, until the next time.
  isHeld_ = PushSymbolicHotKeyMode();
}

void KeyboardCapture::release() {
  if (std::exchange(isHeld_, false)) PopSymbolicHotKeyMode();
}

}  // namespace vistrel::KeyboardShortcuts
