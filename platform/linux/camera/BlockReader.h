#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "linux/camera/HuffmanCode.h"
#include "linux/camera/JpegBits.h"
#include "linux/camera/ReducedTransform.h"

namespace vistrel::camera {

/// Where the coefficients of a block stand, in the order in which they are sent.
inline constexpr std::array<std::uint8_t, kJpegCoefficients> kZigzag = {
    0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
    41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
    30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

/// Reads blocks off a window of bits, which has to reach far enough: the inner loops of decoding. A local
/// variable that the compiler can keep in registers; so what is rare works on copies.
class BlockReader {
 public:
  explicit BlockReader(const BitWindow& from) : window(from) {}

  BitWindow window;
  bool isBroken = false;  ///< there was a code that is none

  /// Gives the change of the DC coefficient and passes all others.
  [[gnu::always_inline]] int readDc(const BlockCode& code) {
    window.refill();
    const FirstEntry first = code.firstAndSkip[window.peek(BlockCode::kFirstBits)];
    if (first.length == 0) [[unlikely]] {
      const int difference = longDifference(code.dc);
      passFrom(1, code);
      return difference;
    }
    window.drop(first.length);
    if (first.advance < kJpegCoefficients) passFrom(1U + first.advance, code);
    return first.difference;
  }

  /// Gives the change of the DC coefficient and puts all others, times their factors, into `block`, which
  /// holds zeros. True: there are others.
  [[gnu::always_inline]] bool readAll(const BlockCode& code, const JpegFactors& factors, int& difference,
                                      Coefficients& block) {
    window.refill();
    const FirstEntry first = code.firstAndEnd[window.peek(BlockCode::kFirstBits)];
    if (first.length == 0) [[unlikely]] {
      difference = longDifference(code.dc);
    } else {
      difference = first.difference;
      window.drop(first.length);
      if (first.advance != 0) return false;
    }
    readFromSecond(code, factors, block);
    return true;
  }

 private:
  static constexpr int kSkipsInWindow = 56 / BlockCode::kMostSkipped;
  static constexpr int kPairsInWindow = 56 / BlockCode::kPairBits;
  static constexpr unsigned kSkipLengthMask = (1U << kSkipLengthBits) - 1;

  [[gnu::always_inline]] void passFrom(unsigned at, const BlockCode& code) {
    while (at < kJpegCoefficients) {
      window.refill();
      for (int i = 0; i < kSkipsInWindow; ++i) {
        const unsigned entry = code.skip[window.peek(BlockCode::kSkipBits)];
        const unsigned next = at + (entry >> kSkipLengthBits);
        if (next >= kJpegCoefficients) return passEnd(at, next, entry, code);
        if (entry == 0) [[unlikely]] {
          at = passOne(at, code.ac);
          break;
        }
        window.drop(entry & kSkipLengthMask);
        at = next;
      }
    }
  }

  /// An entry that reaches the block's end may reach into the next block.
  void passEnd(unsigned at, unsigned next, unsigned entry, const BlockCode& code) {
    if (next == kJpegCoefficients || next - kBlockEnds < kJpegCoefficients) [[likely]]
      window.drop(entry & kSkipLengthMask);
    else
      while (at < kJpegCoefficients) at = passOne(at, code.ac);
  }

  unsigned passOne(unsigned at, const HuffmanCode& ac) {
    window.refill();
    const ValueEntry entry = longEntry(window, ac);
    if (entry.length == 0) isBroken = true;
    window.drop(entry.length);
    return at + (entry.length == 0 ? kBlockEnds : entry.advance);
  }

  [[gnu::always_inline]] void readFromSecond(const BlockCode& code, const JpegFactors& factors,
                                             Coefficients& block) {
    for (unsigned at = 1; at < kJpegCoefficients;) {
      window.refill();
      for (int i = 0; i < kPairsInWindow; ++i) {
        const PairEntry entry = code.pairs[window.peek(BlockCode::kPairBits)];
        const unsigned next = at + entry.advance;
        if (entry.length == 0 || reachesBeyond(next)) [[unlikely]] {
          at = readOne(at, code, factors, block);
          break;
        }
        put(at + entry.secondPlace, entry.second, factors, block);
        put(at + entry.firstPlace, entry.first, factors, block);
        window.drop(entry.length);
        at = next;
        if (at >= kJpegCoefficients) return;
      }
    }
  }

  /// True for the number of the next coefficient when the entry before it reaches into the next block.
  static bool reachesBeyond(unsigned next) {
    return next % kBlockEnds > kJpegCoefficients - (next < kBlockEnds ? 0U : 1U);
  }

  unsigned readOne(unsigned at, const BlockCode& code, const JpegFactors& factors, Coefficients& block) {
    window.refill();
    ValueEntry entry = code.values[window.peek(BlockCode::kValueBits)];
    if (entry.length == 0) entry = longEntry(window, code.ac);
    if (entry.length == 0) isBroken = true;
    const int value = valueBehind(entry.codeLength, entry.size);
    window.drop(entry.length);
    if (isBroken || entry.advance == kBlockEnds) return kBlockEnds;
    // A run past the end means the last one, as it does for libjpeg.
    put(std::min<unsigned>(at + entry.advance, kJpegCoefficients) - 1, value, factors, block);
    return at + entry.advance;
  }

  static void put(unsigned place, int value, const JpegFactors& factors, Coefficients& block) {
    block[kZigzag[place]] = static_cast<std::int16_t>(value * factors[place]);
  }

  /// The number of `size` bits behind the next `skipped` ones.
  [[nodiscard]] int valueBehind(unsigned skipped, unsigned size) const {
    const std::uint64_t bits = window.bits << skipped;
    const int magnitude = static_cast<int>(bits >> 1 >> (63 - size));
    const int isNegative = static_cast<int>(static_cast<std::int64_t>(~bits) >> 63);
    return magnitude + (isNegative & (1 - (1 << size)));
  }

  int longDifference(const HuffmanCode& dc) {
    const HuffmanCode::Symbol symbol = longSymbol(window, dc);
    if (symbol.length == 0) isBroken = true;
    const unsigned size = symbol.value;
    const int value = valueBehind(symbol.length, size);
    window.drop(symbol.length + size);
    return value;
  }

  [[gnu::noinline]] static HuffmanCode::Symbol longSymbol(BitWindow from, const HuffmanCode& code) {
    return code.decode(from.peek(kLongestCode));
  }
  [[gnu::noinline]] static ValueEntry longEntry(BitWindow from, const HuffmanCode& ac) {
    return valueEntryOf(ac.decode(from.peek(kLongestCode)));
  }
};

}  // namespace vistrel::camera
