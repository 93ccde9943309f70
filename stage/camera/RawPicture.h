#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace vistrel::stage {

/// The layouts of the test camera's pictures. `I422Full` is what its JPEG encoder takes.
enum class PixelFormat { Yuy2, Uyvy, Nv12, I420, Yv12, Rgb, Bgr, Rgbx, Bgrx, I422Full };

[[nodiscard]] std::optional<PixelFormat> pixelFormatFromName(std::string_view name);

/// A color of the test picture, in each form that a layout may want.
struct Color {
  std::uint8_t red, green, blue;
};

struct Area {
  int left, top, right, bottom;
};

/// A picture in one of the layouts, filled by rectangles. Coordinates are rounded down to even ones.
class RawPicture {
 public:
  RawPicture(PixelFormat format, int width, int height);

  void fill(Area area, Color color);
  /// Adds `amount` at most to the brightness of each pixel of the top `lines` lines, in a fixed pattern.
  void roughen(int lines, int amount);

  [[nodiscard]] PixelFormat format() const { return format_; }
  [[nodiscard]] int width() const { return width_; }
  [[nodiscard]] int height() const { return height_; }
  [[nodiscard]] int stride() const { return planes_.front().stride; }
  [[nodiscard]] std::span<const std::uint8_t> bytes() const { return bytes_; }
  [[nodiscard]] std::uint8_t* line(int plane, int y);

 private:
  /// Where a plane lies, and how many bytes of it two neighbouring pixels take.
  struct Plane {
    std::size_t offset;
    int stride;
    int bytesPerPair;
    int linesPerRow;
  };
  void addPlane(int bytesPerPair, int linesPerRow);

  PixelFormat format_;
  int width_;
  int height_;
  std::vector<Plane> planes_;
  std::vector<std::uint8_t> bytes_;
};

}  // namespace vistrel::stage
