#include "linux/widgets/GlassLayout.h"

#include <cmath>
#include <cstdint>

namespace vistrel::widgets {

namespace {

// A bar of one pixel is a rounding, not a different shape.
constexpr int kThinnestBars = 2;

bool isEmpty(PixelSize size) { return size.width <= 0 || size.height <= 0; }

int scaled(int length, int numerator, int denominator) {
  const std::int64_t product = static_cast<std::int64_t>(length) * numerator;
  return static_cast<int>((product + denominator / 2) / denominator);
}

int withoutThinBars(int length, int available) {
  return available - length < kThinnestBars ? available : std::max(1, length);
}

}  // namespace

PixelRect letterBox(PixelSize glass, PixelSize picture) {
  if (isEmpty(glass) || isEmpty(picture)) return {};
  PixelSize size = glass;
  const std::int64_t slope = static_cast<std::int64_t>(glass.width) * picture.height -
                             static_cast<std::int64_t>(glass.height) * picture.width;
  if (slope > 0) {
    size.width = withoutThinBars(scaled(glass.height, picture.width, picture.height), glass.width);
  } else {
    size.height = withoutThinBars(scaled(glass.width, picture.height, picture.width), glass.height);
  }
  return {(glass.width - size.width) / 2, (glass.height - size.height) / 2, size};
}

PixelRect pixelRect(const Rect& points, double scale) {
  const auto pixel = [scale](double point) { return static_cast<int>(std::lround(point * scale)); };
  const int left = pixel(points.x);
  const int top = pixel(points.y);
  return {left, top, {pixel(points.maxX()) - left, pixel(points.maxY()) - top}};
}

}  // namespace vistrel::widgets
