#pragma once

#include <array>
#include <cstdint>

namespace vistrel::camera {

/// The formats that can be shown, the cheapest to show first. The names of packed and RGB formats give the
/// order of the bytes in memory; an X is a byte without meaning.
enum class PixelFormat { I420, Yv12, Nv12, Yuy2, Uyvy, Bgrx, Rgbx, Xrgb, Xbgr, Bgr24, Rgb24, Mjpeg };

enum class PixelFamily {
  Planar,      ///< luma and both chroma components in planes of their own, chroma halved in both directions
  SemiPlanar,  ///< the chroma components in pairs in one plane
  Packed,      ///< four bytes for two pixels that share their chroma
  Rgb,
  Compressed,
};

/// How a format lies in memory.
struct PixelLayout {
  PixelFamily family = PixelFamily::Compressed;
  int planeCount = 0;
  int bytes = 0;  ///< for each unit of the first plane: a sample, a pair of pixels, a pixel
  /// Where the three components are: the plane of Y, U, V; the byte of Y, U, V in a unit; of red, green,
  /// blue.
  std::array<std::uint8_t, 3> order{};
};

[[nodiscard]] const PixelLayout& layoutOf(PixelFormat format);

}  // namespace vistrel::camera
