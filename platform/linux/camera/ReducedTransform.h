#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "linux/camera/JpegHeader.h"

namespace vistrel::camera {

/// Dequantised coefficients of a block, row by row.
struct alignas(16) Coefficients : std::array<std::int16_t, kJpegCoefficients> {};

/// The sample that stands for a whole block whose DC coefficient, times its factor, is `dc`. A number that no
/// picture has wraps around as it does for libjpeg.
[[nodiscard]] inline std::uint8_t wholeSample(int dc) {
  constexpr int kWrap = 512;
  const int mean = ((((dc + 4) >> 3) & (2 * kWrap - 1)) ^ kWrap) - kWrap;
  return static_cast<std::uint8_t>(std::clamp(mean + 128, 0, 255));
}

/// The sample that all of a block without other coefficients has.
[[nodiscard]] inline std::uint8_t flatSample(std::int16_t dc) {
  return static_cast<std::uint8_t>(std::clamp(((dc + 4) >> 3) + 128, 0, 255));
}

/// The inverse cosine transform with each of `side`² samples the mean of what it covers: 2, 4, or 8 for the
/// whole transform. In fixed point like libjpeg's, so that the samples are the same.
template <int side>
void transform(const Coefficients& block, std::uint8_t* samples, std::ptrdiff_t stride);

/// The same without the processor's instructions for it: what `transform` is compared with, and what it is on
/// other processors.
template <int side>
void transformPlainly(const Coefficients& block, std::uint8_t* samples, std::ptrdiff_t stride);

}  // namespace vistrel::camera
