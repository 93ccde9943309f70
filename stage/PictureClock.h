#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace vistrel::stage {

/// The test picture and the clock in it, as the test camera draws it and the screen reader reads it.
///
///     +-------+-----------+-------------------+   left half red, right half blue, a green block in the
///     | green |           |                   |   top left corner: any mirroring, flip, rotation or crop
///     |-------+  red   |bar|      blue        |   shows. A white bar moves to the right.
///     | clock row 0: frame counter            |   Each clock row is a twelfth of the height: 40 cells,
///     | clock row 1: CLOCK_MONOTONIC in ms    |   light is 1: guard 1011, 28 bits, CRC-8.
///     +---------------------------------------+
///
/// The clock can be a strip instead, each row a thirtieth. Values are modulo 2^28 (the clock wraps after
/// three days). A picture is read only when both rows agree on the way round.
namespace clock {

inline constexpr int kCells = 40;
inline constexpr int kGuardCells = 4;
inline constexpr int kValueCells = 28;
inline constexpr int kChecksumCells = 8;
inline constexpr std::uint32_t kGuard = 0b1011;
inline constexpr std::uint32_t kMask = (1U << kValueCells) - 1;
inline constexpr int kRows = 2;
inline constexpr int kRowsPerPicture = 12;
inline constexpr int kStripRowsPerPicture = 30;

/// The checksum over the four bytes of `value`: polynomial 0x07, start 0xa5.
constexpr std::uint32_t checksum(std::uint32_t value) {
  std::uint32_t sum = 0xa5;
  for (int shift = 24; shift >= 0; shift -= 8) {
    sum ^= (value >> shift) & 0xffU;
    for (int bit = 0; bit < 8; ++bit) sum = ((sum & 0x80U) != 0 ? sum << 1 ^ 0x07U : sum << 1) & 0xffU;
  }
  return sum;
}

constexpr std::uint64_t encode(std::uint32_t value) {
  const std::uint64_t kept = value & kMask;
  return std::uint64_t{kGuard} << (kValueCells + kChecksumCells) | kept << kChecksumCells |
         checksum(static_cast<std::uint32_t>(kept));
}

constexpr std::optional<std::uint32_t> decode(std::uint64_t cells) {
  const auto value = static_cast<std::uint32_t>(cells >> kChecksumCells) & kMask;
  if (encode(value) != cells) return std::nullopt;
  return value;
}

/// `later` minus `earlier`, modulo 2^28.
constexpr int difference(std::uint32_t later, std::uint32_t earlier) {
  return static_cast<std::int32_t>((later - earlier) << 4U) >> 4;
}

/// The first line of a clock row in a picture of `height` lines; row 2 is the end of the picture.
constexpr int rowTop(int height, int row, int rowsPerPicture = kRowsPerPicture) {
  return height - (kRows - row) * (height / rowsPerPicture);
}

struct Reading {
  std::uint32_t counter = 0;
  std::uint32_t milliseconds = 0;
  bool isMirrored = false;
};

/// Reads both rows of a picture of `width` × `height`; `isLight(x, y)` tells the brightness of a pixel.
template <class IsLight>
std::optional<Reading> read(int width, int height, IsLight isLight) {
  for (const bool isMirrored : {false, true}) {
    std::array<std::optional<std::uint32_t>, kRows> rows;
    for (int row = 0; row < kRows; ++row) {
      const int y = (rowTop(height, row) + rowTop(height, row + 1)) / 2;
      std::uint64_t cells = 0;
      for (int cell = 0; cell < kCells; ++cell) {
        const int x = (2 * cell + 1) * width / (2 * kCells);
        cells = cells << 1U | (isLight(isMirrored ? width - 1 - x : x, y) ? 1U : 0U);
      }
      rows[row] = decode(cells);
    }
    if (rows[0] && rows[1]) return Reading{*rows[0], *rows[1], isMirrored};
  }
  return std::nullopt;
}

}  // namespace clock
}  // namespace vistrel::stage
