#pragma once

#include "foundation/Geometry.h"
#include "linux/camera/Picture.h"
#include "linux/camera/Scratch.h"

namespace vistrel::capture {

/// True where a reduction is so strong that rows are dropped before anything else touches them.
[[nodiscard]] bool isStrongReduction(int from, int to);

/// Averages `rows` pairs of rows spread evenly over a block of `fromRows` rows of `rowBytes` bytes, whatever
/// the bytes mean. This is what makes a strong reduction cheap: the rest of the source is never read.
void reduceRows(Plane source, int fromRows, int rowBytes, std::uint8_t* out, int outStride, int rows);

/// Scales single planes, one byte a sample.
class PlaneScaler {
 public:
  void scale(Plane source, PixelSize from, std::uint8_t* out, int outStride, PixelSize to);

 private:
  Plane halveWidth(Plane source, PixelSize& from, int width);

  Scratch rows_;
  Scratch halves_[2];
};

}  // namespace vistrel::capture
