#pragma once

#include <optional>

#include "stage/PictureClock.h"
#include "stage/screen/Screen.h"

namespace vistrel::stage {

/// Reads the clock of a test picture that fills `place` of `image`.
[[nodiscard]] std::optional<clock::Reading> readClock(const Image& image, Rectangle place);

/// Finds the test picture in `image` by its colors and its clock, at whatever size it is shown.
[[nodiscard]] std::optional<Rectangle> findPicture(const Image& image);

/// True when the green block is in the upper corner that belongs to a picture of that way round.
[[nodiscard]] bool isUpright(const Image& image, Rectangle place, bool isMirrored);

/// How many pixels the border between a light and a dark cell takes on average; above two, the picture was
/// enlarged after it was scaled.
[[nodiscard]] double softness(const Image& image, Rectangle place);

}  // namespace vistrel::stage
