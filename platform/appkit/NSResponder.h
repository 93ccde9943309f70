#pragma once

#include "foundation/NSObject.h"

namespace vistrel {

class NSEvent;

/// A link of the chain along which events and actions travel: view, superview, controller, window,
/// application.
class NSResponder : public NSObject {
 public:
  [[nodiscard]] virtual NSResponder* nextResponder() const { return nextResponder_; }
  /// The next responder must outlive its place in the chain.
  void setNextResponder(NSResponder* next) { nextResponder_ = next; }

  /// Runs the action here or at the first link above that answers to it.
  bool tryToPerform(const Selector& action, NSObject* sender);

  [[nodiscard]] virtual bool acceptsFirstResponder() const { return false; }
  /// Asked when the window makes this its first responder; false refuses.
  virtual bool becomeFirstResponder() { return true; }
  virtual bool resignFirstResponder() { return true; }

  /// Each of these passes the event on to the next responder unless it is overridden.
  virtual void keyDown(const NSEvent& event);
  virtual void keyUp(const NSEvent& event);
  virtual void rightMouseDown(const NSEvent& event);
  virtual void rightMouseDragged(const NSEvent& event);
  virtual void rightMouseUp(const NSEvent& event);
  virtual void scrollWheel(const NSEvent& event);
  virtual void magnifyWithEvent(const NSEvent& event);
  virtual void mouseEntered(const NSEvent& event);
  virtual void mouseExited(const NSEvent& event);
  /// A key that may be a command whoever has the focus. True when it was one.
  virtual bool performKeyEquivalent(const NSEvent& event);

  /// Hands the event of a window to the method above that it is for, wherever the focus is; a pressed key to
  /// `performKeyEquivalent`. True when that was a command.
  bool dispatch(const NSEvent& event);

 private:
  NSResponder* nextResponder_ = nullptr;
};

}  // namespace vistrel
