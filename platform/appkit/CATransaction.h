#pragma once

namespace vistrel {

/// What is meant to be on screen and has not been sent to it yet.
class CATransaction {
 public:
  /// Puts it there now, a window that is about to appear included. For who is about to block the main thread.
  static void flush();
};

}  // namespace vistrel
