#pragma once

#include "linux/camera/PixelFormat.h"

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

}  // namespace vistrel::camera
