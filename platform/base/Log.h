#pragma once

#include <functional>
#include <string_view>

namespace vistrel {

/// The one logger: free-text lines, one an event, on the standard output. What would break a line in two, as
/// names from outside may, is written as a blank.
class Log {
 public:
  /// Writes one line, flushed, ending in a line feed.
  static void line(std::string_view text);

  /// Says something once on standard error that the user should know about their set-up.
  static void warning(std::string_view text);

  /// Where lines go instead of the standard output; an empty function restores it.
  using Sink = std::function<void(std::string_view)>;
  static void setSink(Sink sink);
};

}  // namespace vistrel
