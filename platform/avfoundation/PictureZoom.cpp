#include "avfoundation/PictureZoom.h"

#include <algorithm>

namespace vistrel {

namespace {

// What repeated steps there and back leave behind is no magnification.
constexpr double kNothing = 1e-6;

double within(double start, double length) { return std::clamp(start, 0.0, 1 - length); }

}  // namespace

void PictureZoom::magnify(double ratio, Point anchor) {
  double length = std::clamp(part_.width / ratio, 1 / kMost, 1.0);
  if (length > 1 - kNothing) length = 1;
  const double shrinking = length / part_.width;
  part_ = {within(anchor.x - (anchor.x - part_.x) * shrinking, length),
           within(anchor.y - (anchor.y - part_.y) * shrinking, length), length, length};
}

void PictureZoom::pan(double across, double down) {
  part_.x = within(part_.x + across, part_.width);
  part_.y = within(part_.y + down, part_.height);
}

}  // namespace vistrel
