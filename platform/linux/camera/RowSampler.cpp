#include "linux/camera/RowSampler.h"

#include <libyuv.h>

#include <algorithm>
#include <cmath>

namespace vistrel::camera {
namespace {

constexpr double kMild = 2;
constexpr double kSparse = 6;
constexpr int kWhole = 256;
constexpr int kCacheLine = 64;

struct Blend {
  int upper = 0;
  int lower = 0;
  int share = 0;  // of the lower one, of 256
};

Blend blendAt(const Axis& axis, int index) {
  const double ratio = axis.ratio();
  const double start = axis.start();
  const auto clamp = [&](double row) { return std::clamp(static_cast<int>(row), 0, axis.samples - 1); };
  if (ratio > kSparse) return {clamp(start + (index + 0.5) * ratio), 0, 0};
  if (ratio > kMild)
    return {clamp(start + (index + 0.25) * ratio), clamp(start + (index + 0.75) * ratio), kWhole / 2};
  const double position = std::max(start + (index + 0.5) * ratio - 0.5, 0.0);
  const int upper = clamp(position);
  return {upper, clamp(upper + 1), static_cast<int>(std::lround((position - upper) * kWhole))};
}

// The memory of a frame is cold, and the rows that a strong reduction takes lie too far apart for the
// processor to guess: the next ones are on their way while this one is worked on.
void fetchAhead(const std::uint8_t* row, int bytes) {
  for (int i = 0; i < bytes; i += kCacheLine) __builtin_prefetch(row + i);
}

const std::uint8_t* rowOf(Plane plane, int index) {
  return plane.data + static_cast<std::ptrdiff_t>(index) * plane.stride;
}

}  // namespace

const std::uint8_t* RowSampler::row(Plane plane, int rowBytes, const Axis& axis, int index) {
  const Blend blend = blendAt(axis, index);
  if (axis.ratio() > kMild && index + 1 < axis.wanted()) {
    const Blend next = blendAt(axis, index + 1);
    fetchAhead(rowOf(plane, next.upper), rowBytes);
    if (next.share > 0) fetchAhead(rowOf(plane, next.lower), rowBytes);
  }
  if (blend.share == 0 || blend.upper == blend.lower) return rowOf(plane, blend.upper);
  if (blend.share >= kWhole) return rowOf(plane, blend.lower);
  auto* out = blend_.take(static_cast<std::size_t>(rowBytes));
  libyuv::InterpolatePlane(rowOf(plane, blend.upper), 0, rowOf(plane, blend.lower), 0, out, 0, rowBytes, 1,
                           blend.share);
  return out;
}

}  // namespace vistrel::camera
