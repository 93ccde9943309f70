#include "linux/camera/PlaneScaler.h"

#include <libyuv.h>

namespace vistrel::capture {
namespace {

constexpr int kStrong = 4;
constexpr int kHalf = 128;  // of 256

const std::uint8_t* row(Plane plane, std::int64_t index) { return plane.data + index * plane.stride; }

void halveRow(const std::uint8_t* __restrict in, std::uint8_t* __restrict out, int width) {
  for (int i = 0; i < width; ++i) out[i] = static_cast<std::uint8_t>((in[2 * i] + in[2 * i + 1] + 1) >> 1);
}

}  // namespace

bool isStrongReduction(int from, int to) { return from >= kStrong * to; }

void reduceRows(Plane source, int fromRows, int rowBytes, std::uint8_t* out, int outStride, int rows) {
  for (std::int64_t y = 0; y < rows; ++y) {
    const auto* upper = row(source, (4 * y + 1) * fromRows / (4 * rows));
    const auto* lower = row(source, (4 * y + 3) * fromRows / (4 * rows));
    libyuv::InterpolatePlane(upper, 0, lower, 0, out + y * outStride, 0, rowBytes, 1, kHalf);
  }
}

Plane PlaneScaler::halveWidth(Plane source, PixelSize& from, int width) {
  for (int turn = 0; from.width >= 2 * width && from.width % 2 == 0; turn ^= 1) {
    from.width /= 2;
    auto* out = halves_[turn].take(static_cast<std::size_t>(from.width) * from.height);
    for (int y = 0; y < from.height; ++y) halveRow(row(source, y), out + y * from.width, from.width);
    source = {out, from.width};
  }
  return source;
}

void PlaneScaler::scale(Plane source, PixelSize from, std::uint8_t* out, int outStride, PixelSize to) {
  if (isStrongReduction(from.height, to.height)) {
    auto* rows = rows_.take(static_cast<std::size_t>(from.width) * to.height);
    reduceRows(source, from.height, from.width, rows, from.width, to.height);
    source = {rows, from.width};
    from.height = to.height;
  }
  if (from.height == to.height) source = halveWidth(source, from, to.width);
  libyuv::ScalePlane(source.data, source.stride, from.width, from.height, out, outStride, to.width, to.height,
                     libyuv::kFilterBox);
}

}  // namespace vistrel::capture
