#pragma once

#include "base/Geometry.h"

namespace vistrel::widgets {

/// A rectangle in physical pixels.
struct PixelRect {
  int x = 0;
  int y = 0;
  PixelSize size;
  bool operator==(const PixelRect&) const = default;
};

/// Where a picture of that shape lies in the glass: as large as fits, in the middle, its aspect kept. Bars
/// that would together be thinner than two pixels are left out. Empty when either is.
[[nodiscard]] PixelRect letterBox(PixelSize glass, PixelSize picture);

/// The pixels that a rectangle in points covers at a scale. Rectangles that touch in points touch in pixels.
[[nodiscard]] PixelRect pixelRect(const Rect& points, double scale);

}  // namespace vistrel::widgets
