#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "linux/camera/JpegHeader.h"

namespace vistrel::camera {

inline constexpr int kLongestCode = 16;

/// A code that is decoded length by length, and from which the quick tables are made.
class HuffmanCode {
 public:
  struct Symbol {
    std::uint8_t length = 0;  ///< bits of its code; 0 where no code begins with such bits
    std::uint8_t value = 0;
  };

  /// None for what is no prefix code, or uses the code of ones alone, which a JPEG must not.
  [[nodiscard]] static std::optional<HuffmanCode> from(const HuffmanSpec& spec);
  /// `bits` are the next 16, the first of them on top.
  [[nodiscard]] Symbol decode(unsigned bits) const;

 private:
  std::array<std::uint32_t, kLongestCode + 1> ends_{};  // of the codes of a length, as their first 16 bits
  std::array<int, kLongestCode + 1> offsets_{};         // from such a code to its place among the symbols
  std::array<std::uint8_t, 256> symbols_{};
};

/// The advance of an entry behind which a block ends. More than all coefficients together.
inline constexpr int kBlockEnds = 2 * kJpegCoefficients;

/// What the next bits mean, if they are the DC coefficient and as much behind it as the table could see.
struct FirstEntry {
  std::int16_t difference = 0;
  std::uint8_t advance = 0;  ///< coefficients passed behind the first one, or `kBlockEnds` and more
  std::uint8_t length = 0;   ///< bits to drop; 0 where the table does not reach
};

/// Some AC coefficients that nobody wants: the bits to drop in the low 5 bits, the coefficients passed above.
/// 0 where the table does not reach.
using SkipEntry = std::uint16_t;
inline constexpr int kSkipLengthBits = 5;

/// One AC coefficient.
struct ValueEntry {
  std::uint8_t length = 0;      ///< bits of code and value; 0 where the table does not reach
  std::uint8_t codeLength = 0;  ///< of them, the code's
  std::uint8_t size = 0;        ///< of them, the value's
  std::uint8_t advance = 0;     ///< coefficients passed, this one too, or `kBlockEnds`
};

/// Up to two AC coefficients and the block's end, all of whose bits the table could see. The places count
/// from the coefficient that is next; where there is no second one, it is a zero in the place of the first.
struct PairEntry {
  std::int16_t first = 0;
  std::int16_t second = 0;
  std::uint8_t firstPlace = 0;
  std::uint8_t secondPlace = 0;
  std::uint8_t advance = 0;  ///< coefficients passed, and `kBlockEnds` more behind the block's end
  std::uint8_t length = 0;   ///< bits to drop; 0 where the table does not reach
};

/// The entry for an AC symbol; one of length 0 for none.
[[nodiscard]] ValueEntry valueEntryOf(HuffmanCode::Symbol symbol);

/// The tables of one component.
class BlockCode {
 public:
  static constexpr int kFirstBits = 11;
  static constexpr int kSkipBits = 12;
  static constexpr int kPairBits = 11;
  static constexpr int kValueBits = 10;
  /// The longest that an entry for skipping drops at once.
  static constexpr int kMostSkipped = 18;

  [[nodiscard]] static std::optional<BlockCode> from(const HuffmanSpec& dc, const HuffmanSpec& ac);

  HuffmanCode dc, ac;
  /// For a scale that wants the DC coefficient only: the first table passes others behind it.
  std::array<FirstEntry, 1U << kFirstBits> firstAndSkip;
  std::array<SkipEntry, 1U << kSkipBits> skip;
  /// For one that wants all: the first table passes the block's end only.
  std::array<FirstEntry, 1U << kFirstBits> firstAndEnd;
  std::array<PairEntry, 1U << kPairBits> pairs;
  std::array<ValueEntry, 1U << kValueBits> values;

 private:
  void build();
};

}  // namespace vistrel::camera
