#pragma once

#include <cstdint>
#include <vector>

#include "base/Geometry.h"

namespace vistrel::camera {

enum class JpegSampling { Grey, Yuv420, Yuv422, Yuv444 };

inline constexpr int kTestJpegLeft = 60;
inline constexpr int kTestJpegRight = 200;
inline constexpr int kTestJpegRed = 170;

/// A baseline JPEG: luma 60 in its left half and 200 in its right one, Cb 90 and Cr 170 throughout.
[[nodiscard]] std::vector<std::uint8_t> testJpeg(PixelSize size, JpegSampling sampling);

}  // namespace vistrel::camera
