#include "base/URL.h"

#include <cstdio>

namespace vistrel {

namespace {

constexpr std::string_view kUnreservedSigns = "-._~";
constexpr std::string_view kReservedSigns = ":/?#[]@!$&'()*+,;=";
constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";

bool isLetterOrDigit(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool isIn(std::string_view set, char c) { return set.find(c) != std::string_view::npos; }

bool isEscapeAt(std::string_view text, std::size_t position) {
  return text.size() - position > 2 && isIn(kHexDigits, text[position + 1]) &&
         isIn(kHexDigits, text[position + 2]);
}

}  // namespace

std::optional<URL> URL::create(std::string_view text) {
  if (text.empty()) return std::nullopt;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool isAllowed = isLetterOrDigit(c) || isIn(kUnreservedSigns, c) || isIn(kReservedSigns, c) ||
                           (c == '%' && isEscapeAt(text, i));
    if (!isAllowed) return std::nullopt;
  }
  return URL(std::string(text));
}

URL URL::fileUrl(std::string_view path) {
  std::string text = "file://";
  for (const char c : path) {
    if (isLetterOrDigit(c) || isIn(kUnreservedSigns, c) || c == '/') {
      text += c;
      continue;
    }
    char escape[4];
    std::snprintf(escape, sizeof escape, "%%%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
    text += escape;
  }
  return URL(std::move(text));
}

}  // namespace vistrel
