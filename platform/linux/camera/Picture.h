#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "base/Geometry.h"
#include "linux/camera/Orientation.h"
#include "linux/camera/PixelFormat.h"
#include "linux/camera/Scratch.h"

namespace vistrel::camera {

/// How luma and chroma are to be read.
enum class YuvColor { Bt601Limited, Bt601Full, Bt709Limited, Bt709Full };

enum class ColorRange { Unknown, Limited, Full };
enum class ColorMatrix { Unknown, Bt601, Bt709 };

/// What a source says of its colors; most say nothing.
struct SourceColor {
  ColorRange range = ColorRange::Unknown;
  ColorMatrix matrix = ColorMatrix::Unknown;
  bool operator==(const SourceColor&) const = default;
};

/// The one place that decides: JPEG is full range BT.601 (JFIF), everything else limited range BT.601 unless
/// the source says otherwise.
[[nodiscard]] YuvColor decideColor(PixelFormat format, SourceColor source);

/// Rows of samples in memory that somebody else owns.
struct Plane {
  const std::uint8_t* data = nullptr;
  int stride = 0;  ///< bytes from one row to the next
};

/// An uncompressed picture in place. `I420` stands for every planar picture, whatever its chroma resolution;
/// a grey picture has no chroma planes.
struct Picture {
  PixelFormat format = PixelFormat::I420;
  PixelSize size;
  PixelSize chromaSize;
  std::array<Plane, 3> planes;
  YuvColor color = YuvColor::Bt601Limited;
  Orientation orientation = {};
};

/// A picture that owns its memory, which is kept for the next one.
struct OwnedPicture {
  Scratch memory;
  Picture picture;
};

/// A block of memory with the distance of its rows; stride 0 means rows without gaps.
struct PlaneMemory {
  std::span<const std::uint8_t> bytes;
  int stride = 0;
};

/// Describes the raw picture that lies in `memory`: one block for each plane, or all planes in one block.
/// None when the memory is too short for it or the format is a compressed one.
[[nodiscard]] std::optional<Picture> pictureIn(std::span<const PlaneMemory> memory, PixelFormat format,
                                               PixelSize size, YuvColor color);

/// The bytes of a raw picture whose rows have no gaps; 0 for a compressed format.
[[nodiscard]] std::size_t rawBytes(PixelFormat format, PixelSize size);

/// True for a picture that is black or green throughout, as cameras send before their first real one. Looks
/// at a few samples only.
[[nodiscard]] bool isBlank(const Picture& picture);

}  // namespace vistrel::camera
