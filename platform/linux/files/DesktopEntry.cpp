#include "linux/files/DesktopEntry.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/Unicode.h"

namespace vistrel::files {

namespace {

constexpr std::string_view kMainGroup = "[Desktop Entry]";
constexpr std::string_view kBlanks = " \t\r";
// Characters that have a meaning in a command line; an argument with one of them is quoted.
constexpr std::string_view kReserved = " \t\n\"'\\><~|&;$*?#()`";
constexpr std::string_view kEscapedInQuotes = "\"`$\\";

struct Escape {
  char letter;
  char meaning;
};
constexpr Escape kEscapes[] = {{'s', ' '}, {'n', '\n'}, {'t', '\t'}, {'r', '\r'}, {'\\', '\\'}};

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// The key of a line; empty for a comment, a group and a blank line.
std::string_view keyOf(std::string_view line) {
  const std::string_view text = trimmed(line);
  const auto sign = text.find('=');
  if (text.empty() || text.front() == '#' || text.front() == '[' || sign == std::string_view::npos) return {};
  return trimmed(text.substr(0, sign));
}

bool isGroup(std::string_view line) { return trimmed(line).starts_with('['); }

std::string unescaped(std::string_view value) {
  std::string result;
  for (std::size_t i = 0; i < value.size(); ++i) {
    const char next = value[i] == '\\' && i + 1 < value.size() ? value[i + 1] : '\0';
    const auto* found =
        std::find_if(std::begin(kEscapes), std::end(kEscapes), [&](Escape e) { return e.letter == next; });
    const bool isEscape = found != std::end(kEscapes);
    result += isEscape ? found->meaning : value[i];
    if (isEscape) ++i;
  }
  return result;
}

std::string escaped(std::string_view value) {
  std::string result;
  for (std::size_t i = 0; i < value.size(); ++i) {
    const char c = value[i];
    // A blank is escaped only where it would be trimmed.
    const bool isInnerBlank = c == ' ' && i > 0 && i + 1 < value.size();
    const auto* found =
        std::find_if(std::begin(kEscapes), std::end(kEscapes), [&](Escape e) { return e.meaning == c; });
    if (found == std::end(kEscapes) || isInnerBlank) {
      result += c;
    } else {
      result += {'\\', found->letter};
    }
  }
  return result;
}

}  // namespace

DesktopEntry::DesktopEntry() : lines_{std::string(kMainGroup)} {}

std::optional<DesktopEntry> DesktopEntry::parse(std::string_view text) {
  if (!unicode::isValidUtf8(text)) return std::nullopt;
  std::vector<std::string> lines;
  for (std::size_t start = 0; start < text.size();) {
    const auto end = std::min(text.find('\n', start), text.size());
    lines.emplace_back(text.substr(start, end - start));
    start = end + 1;
  }
  const auto isMain = [](const std::string& line) { return trimmed(line) == kMainGroup; };
  if (std::none_of(lines.begin(), lines.end(), isMain)) return std::nullopt;
  return DesktopEntry(std::move(lines));
}

std::size_t DesktopEntry::groupBegin() const {
  const auto isMain = [](const std::string& line) { return trimmed(line) == kMainGroup; };
  return static_cast<std::size_t>(std::find_if(lines_.begin(), lines_.end(), isMain) - lines_.begin()) + 1;
}

std::size_t DesktopEntry::groupEnd() const {
  const auto begin = lines_.begin() + static_cast<std::ptrdiff_t>(groupBegin());
  return static_cast<std::size_t>(std::find_if(begin, lines_.end(), isGroup) - lines_.begin());
}

std::optional<std::size_t> DesktopEntry::lineOf(std::string_view key) const {
  for (std::size_t i = groupBegin(); i < groupEnd(); ++i) {
    if (keyOf(lines_[i]) == key) return i;
  }
  return std::nullopt;
}

std::optional<std::string> DesktopEntry::value(std::string_view key) const {
  const auto line = lineOf(key);
  if (!line) return std::nullopt;
  const std::string_view text = lines_[*line];
  return unescaped(trimmed(text.substr(text.find('=') + 1)));
}

std::optional<bool> DesktopEntry::boolean(std::string_view key) const {
  const auto text = value(key);
  return text ? std::optional(*text == "true") : std::nullopt;
}

void DesktopEntry::set(std::string_view key, std::string_view value) {
  std::string line = std::string(key) + "=" + escaped(value);
  if (const auto present = lineOf(key)) {
    lines_[*present] = std::move(line);
    return;
  }
  // After the last key, before the blank lines that set the next group off.
  std::size_t place = groupEnd();
  while (place > groupBegin() && trimmed(lines_[place - 1]).empty()) --place;
  lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(place), std::move(line));
}

void DesktopEntry::remove(std::string_view key) {
  if (const auto present = lineOf(key)) lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(*present));
}

std::vector<std::string> DesktopEntry::keys() const {
  std::vector<std::string> result;
  for (std::size_t i = groupBegin(); i < groupEnd(); ++i) {
    if (const auto key = keyOf(lines_[i]); !key.empty()) result.emplace_back(key);
  }
  return result;
}

std::string DesktopEntry::text() const {
  std::string result;
  for (const auto& line : lines_) result += line + "\n";
  return result;
}

std::string DesktopEntry::quotedArgument(std::string_view argument) {
  const bool needsQuotes = argument.empty() || argument.find_first_of(kReserved) != std::string_view::npos;
  std::string result;
  for (const char c : argument) {
    if (needsQuotes && kEscapedInQuotes.find(c) != std::string_view::npos) result += '\\';
    // A percent sign would begin a field code.
    if (c == '%') result += '%';
    result += c;
  }
  return needsQuotes ? "\"" + result + "\"" : result;
}

}  // namespace vistrel::files
