#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "base/Geometry.h"

namespace vistrel::camera {

/// A baseline JPEG as cameras send them, made from rows of interleaved Y, Cb, Cr (or of grey alone).
struct JpegShape {
  PixelSize size;
  bool isGrey = false;
  int lumaPerChromaX = 2;  ///< 2 and 1: 4:2:2
  int lumaPerChromaY = 1;
  int quality = 75;
};
using FillRow = std::function<void(int y, std::vector<std::uint8_t>& row)>;
[[nodiscard]] std::vector<std::uint8_t> encodeJpeg(const JpegShape& shape, const FillRow& fill);

}  // namespace vistrel::camera
