#include "linux/camera/RowSampler.h"

#include <libyuv.h>

#include <algorithm>
#include <cmath>

namespace vistrel::capture {
namespace {

constexpr double kMild = 2;
constexpr int kWhole = 256;

struct Blend {
  int upper = 0;
  int lower = 0;
  int share = 0;  // of the lower one, of 256
};

Blend blendAt(const Axis& axis, int index) {
  const double ratio = axis.ratio();
  const auto clamp = [&](double row) { return std::clamp(static_cast<int>(row), 0, axis.samples - 1); };
  if (ratio > kMild) return {clamp((index + 0.25) * ratio), clamp((index + 0.75) * ratio), kWhole / 2};
  const double position = std::max((index + 0.5) * ratio - 0.5, 0.0);
  const int upper = clamp(position);
  return {upper, clamp(upper + 1), static_cast<int>(std::lround((position - upper) * kWhole))};
}

}  // namespace

const std::uint8_t* RowSampler::row(Plane plane, int rowBytes, const Axis& axis, int index) {
  const Blend blend = blendAt(axis, index);
  const auto* upper = plane.data + static_cast<std::ptrdiff_t>(blend.upper) * plane.stride;
  const auto* lower = plane.data + static_cast<std::ptrdiff_t>(blend.lower) * plane.stride;
  if (blend.share == 0 || upper == lower) return upper;
  if (blend.share >= kWhole) return lower;
  auto* out = blend_.take(static_cast<std::size_t>(rowBytes));
  libyuv::InterpolatePlane(upper, 0, lower, 0, out, 0, rowBytes, 1, blend.share);
  return out;
}

}  // namespace vistrel::capture
