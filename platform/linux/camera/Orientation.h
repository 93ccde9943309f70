#pragma once

#include "base/Geometry.h"

namespace vistrel::camera {

/// How a camera's picture lies in memory, by the steps that turn it upright, in this order.
struct Orientation {
  bool isTransposed = false;     ///< rows become columns: the upper left corner stays, the other two swap
  bool isFlippedAcross = false;  ///< then left and right change places
  bool isFlippedDown = false;    ///< then top and bottom
  bool operator==(const Orientation&) const = default;

  /// The size of the upright picture, or of the stored one where that is given.
  [[nodiscard]] PixelSize turned(PixelSize size) const {
    return isTransposed ? PixelSize{size.height, size.width} : size;
  }
  /// A part of the upright picture as a part of the stored one, both in fractions of the picture.
  [[nodiscard]] Rect inMemory(Rect part) const {
    if (isFlippedAcross) part.x = 1 - part.maxX();
    if (isFlippedDown) part.y = 1 - part.maxY();
    return isTransposed ? Rect{part.y, part.x, part.height, part.width} : part;
  }
};

}  // namespace vistrel::camera
