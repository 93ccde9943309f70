#pragma once

#include <cstdint>

#include "linux/camera/Picture.h"
#include "linux/camera/Scratch.h"

namespace vistrel::camera {

/// One direction of a plane and of the glass. A subsampled plane has one sample for every `fromStep` pixels
/// of the picture; the glass wants one for every `toStep` of its pixels.
struct Axis {
  int samples = 0;    ///< of the plane
  double from = 0;    ///< pixels of the picture that are seen
  double offset = 0;  ///< of the first seen one, from the plane's first sample, in pixels of the picture
  int fromStep = 1;
  int to = 0;  ///< pixels of the glass
  int toStep = 1;
  bool operator==(const Axis&) const = default;

  /// Samples that the glass wants.
  [[nodiscard]] int wanted() const { return (to + toStep - 1) / toStep; }
  /// The place of the first seen pixel among the samples.
  [[nodiscard]] double start() const { return offset / fromStep; }
  /// Plane samples for each wanted one.
  [[nodiscard]] double ratio() const { return from * toStep / (static_cast<double>(to) * fromStep); }
};

/// Takes rows out of a plane at the glass's height, whatever their bytes mean. Enlarging and mild reductions
/// interpolate between two rows. Stronger ones average two of the covered rows, and beyond a sixth one row
/// stands for all, so that the rest of a large frame is never read: its memory is what costs.
class RowSampler {
 public:
  /// Row `index` of the glass: a row of the plane itself where that is enough. Valid until the next call.
  const std::uint8_t* row(Plane plane, int rowBytes, const Axis& axis, int index);

 private:
  Scratch blend_;
};

}  // namespace vistrel::camera
