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

  enum class Stream { Output, Error };
  /// Writes each line, without its line feed; an empty function restores the C library's streams, which wait
  /// for whoever reads them.
  using Writer = std::function<void(Stream stream, std::string_view line)>;
  static void setWriter(Writer writer);

  /// Where lines go instead of the standard output; an empty function restores it.
  using Sink = std::function<void(std::string_view)>;
  static void setSink(Sink sink);
};

/// Stops the program: a programming or packaging error, told on standard error as "Fatal error: MESSAGE".
[[noreturn]] void fatalError(std::string_view message);

/// Runs `work`. What it throws goes no further: it is told on standard error as a failure of `what`.
void runGuarded(std::string_view what, const std::function<void()>& work) noexcept;

}  // namespace vistrel
