#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vistrel::files {

/// The text of a desktop entry (Desktop Entry Specification), edited in place: keys, groups and comments that
/// nobody asked to change stay as they are.
class DesktopEntry {
 public:
  /// An entry without keys.
  DesktopEntry();
  /// None when the text has no "[Desktop Entry]" group or is not UTF-8.
  [[nodiscard]] static std::optional<DesktopEntry> parse(std::string_view text);

  /// The value of a key in the main group, escapes undone; none when it is missing.
  [[nodiscard]] std::optional<std::string> value(std::string_view key) const;
  /// True for the value "true"; none for a missing key.
  [[nodiscard]] std::optional<bool> boolean(std::string_view key) const;
  void set(std::string_view key, std::string_view value);
  void remove(std::string_view key);
  /// The keys of the main group, in their order.
  [[nodiscard]] std::vector<std::string> keys() const;
  [[nodiscard]] std::string text() const;

  /// One argument for the "Exec" key, by its own rules of quoting; to be `set` like any text.
  [[nodiscard]] static std::string quotedArgument(std::string_view argument);

 private:
  explicit DesktopEntry(std::vector<std::string> lines) : lines_(std::move(lines)) {}
  [[nodiscard]] std::optional<std::size_t> lineOf(std::string_view key) const;
  /// The lines of the main group: from its first key to the next group.
  [[nodiscard]] std::size_t groupBegin() const;
  [[nodiscard]] std::size_t groupEnd() const;

  std::vector<std::string> lines_;
};

}  // namespace vistrel::files
