#pragma once

#include <string>

namespace vistrel {

/// What a screen reader is told besides what is on the screen. Main thread only.
class NSAccessibility {
 public:
  /// Says the text after what is being said; nothing without a screen reader.
  static void announce(const std::string& text);
};

}  // namespace vistrel
