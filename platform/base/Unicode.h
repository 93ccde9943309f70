#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vistrel::unicode {

/// True when both texts are the same characters, however composed (Unicode canonical equivalence);
/// case-sensitive. Bytes that are not UTF-8 compare as they stand.
[[nodiscard]] bool areEqual(std::string_view a, std::string_view b);

/// The text in one of its spellings: equal texts give the same one (normalization form D).
[[nodiscard]] std::string decomposed(std::string_view text);

/// Upper case by the full mapping of Unicode, without a language's own rules ("ß" gives "SS").
[[nodiscard]] std::string upperCased(std::string_view text);

/// User-perceived characters: extended grapheme clusters (UAX #29).
[[nodiscard]] std::size_t characterCount(std::string_view text);

/// One UTF-16 unit as UTF-8 text.
[[nodiscard]] std::string fromUtf16Unit(char16_t unit);

[[nodiscard]] bool isValidUtf8(std::string_view text);

/// The text with U+FFFD in the place of what is not UTF-8.
[[nodiscard]] std::string repairedUtf8(std::string_view text);

/// The text with a blank in the place of each character that ends a line for some reader or other: the
/// control characters and Unicode's separators of lines and paragraphs.
[[nodiscard]] std::string onOneLine(std::string_view text);

}  // namespace vistrel::unicode
