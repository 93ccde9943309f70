#include "base/Unicode.h"

#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <memory>

namespace vistrel::unicode {

namespace {

icu::UnicodeString toUtf16(std::string_view text) {
  return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
}

std::string toUtf8(const icu::UnicodeString& text) {
  std::string result;
  text.toUTF8String(result);
  return result;
}

}  // namespace

bool isValidUtf8(std::string_view text) {
  const auto length = static_cast<int32_t>(text.size());
  for (int32_t i = 0; i < length;) {
    UChar32 character = 0;
    U8_NEXT(text.data(), i, length, character);  // NOLINT(bugprone-inc-dec-in-conditions): the library's own
    if (character < 0) return false;
  }
  return true;
}

std::string repairedUtf8(std::string_view text) { return toUtf8(toUtf16(text)); }

std::string onOneLine(std::string_view text) {
  std::string line;
  const auto length = static_cast<int32_t>(text.size());
  for (int32_t i = 0, start = 0; i < length; start = i) {
    UChar32 character = 0;
    U8_NEXT(text.data(), i, length, character);  // NOLINT(bugprone-inc-dec-in-conditions): the library's own
    const bool endsLine =
        character >= 0 && (U_GET_GC_MASK(character) & (U_GC_CC_MASK | U_GC_ZL_MASK | U_GC_ZP_MASK));
    line += endsLine ? std::string_view(" ") : text.substr(start, i - start);
  }
  return line;
}

std::string decomposed(std::string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* nfd = icu::Normalizer2::getNFDInstance(status);
  if (U_FAILURE(status) || !isValidUtf8(text)) return std::string(text);
  const auto normal = nfd->normalize(toUtf16(text), status);
  return U_SUCCESS(status) ? toUtf8(normal) : std::string(text);
}

bool areEqual(std::string_view a, std::string_view b) { return a == b || decomposed(a) == decomposed(b); }

std::string upperCased(std::string_view text) {
  return toUtf8(toUtf16(text).toUpper(icu::Locale::getRoot()));
}

std::size_t characterCount(std::string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::BreakIterator> iterator(
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
  if (U_FAILURE(status)) return text.size();
  const icu::UnicodeString utf16 = toUtf16(text);
  iterator->setText(utf16);
  std::size_t count = 0;
  while (iterator->next() != icu::BreakIterator::DONE) ++count;
  return count;
}

std::string fromUtf16Unit(char16_t unit) { return toUtf8(icu::UnicodeString(static_cast<UChar>(unit))); }

}  // namespace vistrel::unicode
