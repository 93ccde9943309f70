#pragma once

namespace vistrel {

/// The desktop's alert sound.
class NSSound {
 public:
  static void beep();
};

}  // namespace vistrel
