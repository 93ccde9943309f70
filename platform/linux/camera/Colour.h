#pragma once

#include "linux/camera/PixelFormat.h"

namespace vistrel::camera {

/// How luma and chroma are to be read.
enum class YuvColour { Bt601Limited, Bt601Full, Bt709Limited, Bt709Full };

enum class ColourRange { Unknown, Limited, Full };
enum class ColourMatrix { Unknown, Bt601, Bt709 };

/// What a source says of its colours; most say nothing.
struct SourceColour {
  ColourRange range = ColourRange::Unknown;
  ColourMatrix matrix = ColourMatrix::Unknown;
  bool operator==(const SourceColour&) const = default;
};

/// The one place that decides: JPEG is full range BT.601 (JFIF), everything else limited range BT.601 unless
/// the source says otherwise.
[[nodiscard]] YuvColour decideColour(PixelFormat format, SourceColour source);

}  // namespace vistrel::camera
