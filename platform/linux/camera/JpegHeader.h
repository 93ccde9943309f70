#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "base/Geometry.h"

namespace vistrel::camera {

inline constexpr int kJpegBlock = 8;  ///< samples on a side of a block
inline constexpr int kJpegCoefficients = kJpegBlock * kJpegBlock;
inline constexpr int kLargestJpegSide = 16384;

/// A Huffman code as a JPEG describes it: how many codes there are of each length, and what they stand for.
struct HuffmanSpec {
  std::array<std::uint8_t, 16> counts{};
  std::array<std::uint8_t, 256> symbols{};  ///< zero behind the last one
  bool operator==(const HuffmanSpec&) const = default;
};

/// A number for each coefficient of a block.
using JpegFactors = std::array<std::int16_t, kJpegCoefficients>;

/// One color component: its factors for dequantisation in zigzag order, and its codes.
struct JpegComponent {
  JpegFactors factors{};
  HuffmanSpec dc;
  HuffmanSpec ac;
};

/// What stands in front of the picture data of a plain camera JPEG (ITU-T T.81): sequential, Huffman-coded, 8
/// bits, one scan; grey, or YCbCr with 1 or 2 samples of luma for each one of chroma in either direction.
struct JpegHeader {
  PixelSize size;
  bool isGrey = false;
  int lumaX = 1;  ///< luma's samples for one of chroma, across
  int lumaY = 1;  ///< and down
  int restartInterval = 0;
  std::array<JpegComponent, 3> components;
  std::span<const std::uint8_t> scan;  ///< the picture data and all that follows

  [[nodiscard]] int componentCount() const { return isGrey ? 1 : 3; }
  /// How many groups of blocks there are across and down, each of which holds a block of chroma.
  [[nodiscard]] PixelSize units() const;
};

/// None for anything else than such a JPEG, a damaged header too. A JPEG without Huffman tables has the
/// standard's own, as in a camera's stream.
[[nodiscard]] std::optional<JpegHeader> readJpegHeader(std::span<const std::uint8_t> jpeg);

/// 1, 2, 4 or 8: the most by which a picture can be reduced without falling below the glass.
[[nodiscard]] int reductionFor(PixelSize picture, PixelSize glass);

}  // namespace vistrel::camera
