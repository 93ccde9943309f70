#pragma once

#include <string>

#include "backend/Backend.h"

namespace vistrel {

/// What a screen reader is told besides what is on the screen. Main thread only.
class NSAccessibility {
 public:
  /// Says the text after what is being said; nothing without a screen reader.
  static void announce(const std::string& text) { backend::current().session().announce(text); }
};

}  // namespace vistrel
