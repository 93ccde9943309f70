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

/// What a camera does to its picture before it sends it: a flip of left and right or none, then that many
/// quarter turns to the left. The values are those of SPA_META_TRANSFORMATION_….
enum class Transform { None, By90, By180, By270, Flipped, FlippedBy90, FlippedBy180, FlippedBy270 };

/// By "none", "90", "flipped90" and the like.
[[nodiscard]] std::optional<Transform> transformFromName(std::string_view name);

/// A picture in one of the layouts, filled by rectangles, which are those of the upright picture. Coordinates
/// are rounded down to even ones.
class RawPicture {
 public:
  /// The size is that of the memory.
  RawPicture(PixelFormat format, int width, int height, Transform transform = Transform::None);

  void fill(Area upright, Color color);
  /// Adds `amount` at most to the brightness of each pixel of the top `lines` lines, in a fixed pattern.
  void roughen(int lines, int amount);

  [[nodiscard]] PixelFormat format() const { return format_; }
  /// Of the upright picture.
  [[nodiscard]] int width() const { return isQuarterTurned() ? height_ : width_; }
  [[nodiscard]] int height() const { return isQuarterTurned() ? width_ : height_; }
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
  [[nodiscard]] int quarterTurns() const { return static_cast<int>(transform_) % 4; }
  [[nodiscard]] bool isQuarterTurned() const { return quarterTurns() % 2 != 0; }
  [[nodiscard]] Area inMemory(Area area) const;

  PixelFormat format_;
  int width_;
  int height_;
  Transform transform_;
  std::vector<Plane> planes_;
  std::vector<std::uint8_t> bytes_;
};

}  // namespace vistrel::stage
