#pragma once

#include "linux/camera/PictureConverter.h"
#include "tests/fuzz/Bytes.h"

namespace vistrel::fuzz {

/// Paints a picture as the glass does, into exactly as much memory as that has.
inline void paint(camera::Picture picture, Bytes& bytes) {
  const PixelSize glass{1 + bytes.take<std::uint8_t>(), 1 + bytes.take<std::uint8_t>()};
  const auto turn = bytes.take<std::uint8_t>();
  picture.orientation = {(turn & 1) != 0, (turn & 2) != 0, (turn & 4) != 0};
  Rect part{0, 0, 1, 1};
  if (turn & 8) part = {0.25, 0.125, 0.5, 0.5};
  std::vector<std::uint8_t> pixels(std::size_t{4} * static_cast<std::size_t>(glass.width) *
                                   static_cast<std::size_t>(glass.height));
  static camera::PictureConverter converter;
  (void)isBlank(picture);
  converter.convert(picture, {pixels.data(), 4 * glass.width, glass, (turn & 16) != 0, part});
}

}  // namespace vistrel::fuzz
