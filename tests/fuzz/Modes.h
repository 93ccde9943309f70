#pragma once

#include "linux/camera/VideoMode.h"
#include "tests/fuzz/Bytes.h"

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

}  // namespace vistrel::fuzz
