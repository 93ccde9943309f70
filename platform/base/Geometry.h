#pragma once

#include <algorithm>

namespace vistrel {

/// A place on the desktop or in a view, in points. The origin is the top left corner and y grows downwards.
struct Point {
  double x = 0;
  double y = 0;
  bool operator==(const Point&) const = default;
};

/// A size in points.
struct Size {
  double width = 0;
  double height = 0;
  bool operator==(const Size&) const = default;
};

/// A rectangle in points; (x, y) is its top left corner.
struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
  bool operator==(const Rect&) const = default;

  [[nodiscard]] double maxX() const { return x + width; }
  [[nodiscard]] double maxY() const { return y + height; }
  [[nodiscard]] Point center() const { return {x + width / 2, y + height / 2}; }
  [[nodiscard]] Point lowerLeft() const { return {x, maxY()}; }
  [[nodiscard]] bool isEmpty() const { return width <= 0 || height <= 0; }
  [[nodiscard]] bool contains(Point p) const { return p.x >= x && p.x < maxX() && p.y >= y && p.y < maxY(); }
  /// The rectangle smaller by `dx` and `dy` on each side; negative values make it larger.
  [[nodiscard]] Rect inset(double dx, double dy) const {
    return {x + dx, y + dy, width - 2 * dx, height - 2 * dy};
  }
  [[nodiscard]] Rect intersection(const Rect& o) const {
    const double left = std::max(x, o.x);
    const double top = std::max(y, o.y);
    return {left, top, std::max(0.0, std::min(maxX(), o.maxX()) - left),
            std::max(0.0, std::min(maxY(), o.maxY()) - top)};
  }
};

/// A size in physical pixels.
struct PixelSize {
  int width = 0;
  int height = 0;
  bool operator==(const PixelSize&) const = default;
};

}  // namespace vistrel
