#pragma once

#include <chrono>
#include <optional>
#include <vector>

#include "stage/screen/PictureFinder.h"
#include "stage/screen/Screen.h"

namespace vistrel::stage {

/// What was seen of a test picture on the screen during a while.
struct Sighting {
  Rectangle place;
  bool isMirrored = false;
  bool isUpright = false;
  double softness = 0;
  int frames = 0;            ///< different ones
  int skipped = 0;           ///< frames of the camera in between that were never seen
  int unreadable = 0;        ///< looks that found no clock
  double seconds = 0;        ///< from the first frame to the last
  std::vector<double> ages;  ///< milliseconds from the camera to the screen, ascending

  [[nodiscard]] double framesPerSecond() const { return seconds > 0 ? (frames - 1) / seconds : 0; }
  /// The age that `percent` of the frames do not exceed.
  [[nodiscard]] double age(int percent) const;
};

/// Looks until `frames` different ones were seen (0: no such end) or `patience` is over. None: no picture.
/// `place` none: looks for the picture on the whole screen first.
[[nodiscard]] std::optional<Sighting> watchPicture(const Screen& screen, std::optional<Rectangle> place,
                                                   int frames, std::chrono::milliseconds patience);

/// When, in seconds of CLOCK_MONOTONIC, a picture taken after this call is to be seen at `place`. None: not
/// within `patience`.
[[nodiscard]] std::optional<double> awaitPicture(const Screen& screen, Rectangle place,
                                                 std::chrono::milliseconds patience);

}  // namespace vistrel::stage
