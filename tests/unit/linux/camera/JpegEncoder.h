#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "base/Geometry.h"

struct jpeg_compress_struct;

namespace vistrel::camera {

/// A baseline JPEG as cameras send them, made from rows of interleaved Y, Cb, Cr (or of grey alone).
struct JpegShape {
  PixelSize size;
  bool isGrey = false;
  int lumaPerChromaX = 2;  ///< 2 and 1: 4:2:2
  int lumaPerChromaY = 1;
  int quality = 75;
  std::function<void(jpeg_compress_struct&)> adjust = {};  ///< for what no camera sends, or few do
};
using FillRow = std::function<void(int y, std::vector<std::uint8_t>& row)>;
[[nodiscard]] std::vector<std::uint8_t> encodeJpeg(const JpegShape& shape, const FillRow& fill);

enum class JpegSampling { Grey, Yuv420, Yuv422, Yuv444 };

inline constexpr int kTestJpegLeft = 60;
inline constexpr int kTestJpegRight = 200;
inline constexpr int kTestJpegRed = 170;

/// A baseline JPEG: luma 60 in its left half and 200 in its right one, Cb 90 and Cr 170 throughout.
[[nodiscard]] std::vector<std::uint8_t> testJpeg(PixelSize size, JpegSampling sampling);

}  // namespace vistrel::camera
