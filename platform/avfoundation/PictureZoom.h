#pragma once

#include "base/Geometry.h"

namespace vistrel {

/// Which part of a picture is seen in its glass: magnified 1 to 4 times, at a place that never goes past the
/// picture's edge. Places and lengths are fractions of the picture.
class PictureZoom {
 public:
  static constexpr double kMost = 4;

  [[nodiscard]] const Rect& part() const { return part_; }
  /// Magnifies by `ratio`, which is above zero; what is seen at `anchor`, a point of the picture, stays where
  /// it is in the glass unless the picture's edge would be passed.
  void magnify(double ratio, Point anchor);
  /// Moves the part that is seen.
  void pan(double across, double down);

 private:
  Rect part_{0, 0, 1, 1};
};

}  // namespace vistrel
