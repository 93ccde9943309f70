#include "linux/camera/HuffmanCode.h"

#include <algorithm>

namespace vistrel::camera {
namespace {

constexpr int kLongestRun = 15;

/// An AC symbol with the value behind it.
struct Coefficient {
  int codeLength = 0;
  int size = 0;
  int advance = 0;
  [[nodiscard]] int length() const { return codeLength + size; }
  [[nodiscard]] bool isEnd() const { return advance == kBlockEnds; }
};

Coefficient coefficientOf(HuffmanCode::Symbol symbol) {
  const int run = symbol.value / 16;
  const int size = symbol.value % 16;
  const bool isEnd = size == 0 && run != kLongestRun;
  return {symbol.length, size, isEnd ? kBlockEnds : run + 1};
}

/// A code's symbols by the first bits, as many as any table looks at.
class QuickCode {
 public:
  explicit QuickCode(const HuffmanCode& code) {
    for (unsigned bits = 0; bits < symbols_.size(); ++bits) symbols_[bits] = code.decode(bits << kDropped);
  }
  /// As `HuffmanCode::decode`.
  [[nodiscard]] HuffmanCode::Symbol decode(unsigned bits) const { return symbols_[bits >> kDropped]; }

 private:
  static constexpr int kBits = 12;
  static constexpr int kDropped = kLongestCode - kBits;
  static_assert(kBits >= std::max({BlockCode::kFirstBits, BlockCode::kSkipBits, BlockCode::kPairBits,
                                   BlockCode::kValueBits}));
  std::array<HuffmanCode::Symbol, 1U << kBits> symbols_;
};

/// The bits that a table looks at, from which symbols are taken.
class Window {
 public:
  Window(unsigned value, int bits) : bits_(value << (kLongestCode - bits)), left_(bits) {}

  /// The next symbol, if all of its code is in sight.
  [[nodiscard]] HuffmanCode::Symbol look(const QuickCode& code) const {
    const auto symbol = code.decode(bits_);
    return symbol.length <= left_ ? symbol : HuffmanCode::Symbol{};
  }
  void drop(int count) {
    left_ = std::max(0, left_ - count);
    bits_ = count < kLongestCode ? (bits_ << count) & 0xffffU : 0;
  }
  [[nodiscard]] unsigned peek(int count) const { return bits_ >> (kLongestCode - count); }
  [[nodiscard]] int left() const { return left_; }

 private:
  unsigned bits_;
  int left_;
};

struct Passed {
  int length = 0;
  int advance = 0;
};

/// Passes coefficients as far as they are in sight, but never over a block's end without its code.
Passed pass(Window& window, const QuickCode& ac, int mostLength) {
  Passed passed;
  while (window.left() > 0) {
    const auto next = coefficientOf(window.look(ac));
    const bool fits = next.codeLength > 0 && passed.length + next.length() <= mostLength;
    if (!fits || (!next.isEnd() && passed.advance + next.advance >= kJpegCoefficients - 1)) break;
    passed.length += next.length();
    passed.advance += next.advance;
    window.drop(next.length());
    if (next.isEnd()) break;
  }
  return passed;
}

int valueOf(unsigned bits, int size) {
  const bool isNegative = size > 0 && bits >> (size - 1) == 0;
  return static_cast<int>(bits) - (isNegative ? (1 << size) - 1 : 0);
}

FirstEntry firstEntry(Window window, const QuickCode& dc, const QuickCode& ac, bool isSkipping) {
  const auto symbol = window.look(dc);
  window.drop(symbol.length);
  if (symbol.length == 0 || symbol.value > window.left()) return {};
  const int difference = symbol.value == 0 ? 0 : valueOf(window.peek(symbol.value), symbol.value);
  window.drop(symbol.value);
  const int length = symbol.length + symbol.value;
  auto passed = pass(window, ac, BlockCode::kMostSkipped - length);
  if (!isSkipping && passed.advance != kBlockEnds) passed = {};
  return {static_cast<std::int16_t>(difference), static_cast<std::uint8_t>(passed.advance),
          static_cast<std::uint8_t>(length + passed.length)};
}

/// The value of the next coefficient, which is taken; nothing unless all of it is in sight.
std::optional<int> takeValue(Window& window, const Coefficient& next) {
  if (next.codeLength == 0 || next.length() > window.left()) return std::nullopt;
  window.drop(next.codeLength);
  const int value = next.size == 0 ? 0 : valueOf(window.peek(next.size), next.size);
  window.drop(next.size);
  return value;
}

PairEntry pairEntry(Window window, const QuickCode& ac) {
  PairEntry entry;
  for (int taken = 0; taken < 3; ++taken) {
    const auto next = coefficientOf(window.look(ac));
    if (taken == 2 && !next.isEnd()) break;
    const auto value = takeValue(window, next);
    if (!value) break;
    entry.length = static_cast<std::uint8_t>(entry.length + next.length());
    entry.advance = static_cast<std::uint8_t>(entry.advance + next.advance);
    if (next.isEnd()) break;
    (taken == 0 ? entry.first : entry.second) = static_cast<std::int16_t>(*value);
    entry.secondPlace = static_cast<std::uint8_t>(entry.advance - 1);
    if (taken == 0) entry.firstPlace = entry.secondPlace;
  }
  return entry;
}

SkipEntry skipEntry(Window window, const QuickCode& ac) {
  const auto passed = pass(window, ac, BlockCode::kMostSkipped);
  return static_cast<SkipEntry>(passed.length | passed.advance << kSkipLengthBits);
}

}  // namespace

std::optional<HuffmanCode> HuffmanCode::from(const HuffmanSpec& spec) {
  HuffmanCode made;
  made.symbols_ = spec.symbols;
  std::uint32_t code = 0;
  int place = 0;
  for (int length = 1; length <= kLongestCode; ++length, code *= 2) {
    made.offsets_[length] = place - static_cast<int>(code);
    code += spec.counts[length - 1];
    place += spec.counts[length - 1];
    if (code >= 1U << length) return std::nullopt;
    made.ends_[length] = code << (kLongestCode - length);
  }
  return made;
}

HuffmanCode::Symbol HuffmanCode::decode(unsigned bits) const {
  for (int length = 1; length <= kLongestCode; ++length)
    if (bits < ends_[length]) {
      const int code = static_cast<int>(bits >> (kLongestCode - length));
      return {static_cast<std::uint8_t>(length),
              symbols_[static_cast<std::uint8_t>(code + offsets_[length])]};
    }
  return {};
}

std::optional<BlockCode> BlockCode::from(const HuffmanSpec& dc, const HuffmanSpec& ac) {
  const auto dcCode = HuffmanCode::from(dc);
  const auto acCode = HuffmanCode::from(ac);
  if (!dcCode || !acCode) return std::nullopt;
  BlockCode code;
  code.dc = *dcCode;
  code.ac = *acCode;
  code.build();
  return code;
}

ValueEntry valueEntryOf(HuffmanCode::Symbol symbol) {
  if (symbol.length == 0) return {};
  const auto next = coefficientOf(symbol);
  return {static_cast<std::uint8_t>(next.length()), static_cast<std::uint8_t>(next.codeLength),
          static_cast<std::uint8_t>(next.size), static_cast<std::uint8_t>(next.advance)};
}

void BlockCode::build() {
  const QuickCode quickDc(dc);
  const QuickCode quickAc(ac);
  for (unsigned bits = 0; bits < firstAndSkip.size(); ++bits) {
    firstAndSkip[bits] = firstEntry({bits, kFirstBits}, quickDc, quickAc, true);
    firstAndEnd[bits] = firstEntry({bits, kFirstBits}, quickDc, quickAc, false);
  }
  for (unsigned bits = 0; bits < skip.size(); ++bits) skip[bits] = skipEntry({bits, kSkipBits}, quickAc);
  for (unsigned bits = 0; bits < pairs.size(); ++bits) pairs[bits] = pairEntry({bits, kPairBits}, quickAc);
  for (unsigned bits = 0; bits < values.size(); ++bits)
    values[bits] = valueEntryOf(Window(bits, kValueBits).look(quickAc));
}

}  // namespace vistrel::camera
