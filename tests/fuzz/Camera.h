#pragma once

#include "linux/camera/PictureConverter.h"
#include "linux/camera/VideoMode.h"
#include "tests/fuzz/Bytes.h"

// What the program does with a camera: for the targets that read what one says.
namespace vistrel::fuzz {

/// Does with a camera's modes what the program does, and looks whether they make sense.
inline void useModes(const std::vector<camera::VideoMode>& modes) {
  check(modes.size() <= camera::kMostModes, "more modes than any camera has");
  for (const PixelSize size : {PixelSize{3840, 2160}, PixelSize{1920, 1080}, PixelSize{1280, 720}})
    (void)supportsSize(modes, size);
  const auto choice = chooseMode(modes);
  if (!choice) return;
  const auto isPossible = [](int side) { return side >= 0 && side <= camera::VideoMode::kLongestSide; };
  check(isPossible(choice->size.width) && isPossible(choice->size.height), "a size that no picture has");
}

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
