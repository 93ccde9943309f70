#pragma once

#include <cstdint>
#include <functional>

#include "base/Geometry.h"

namespace vistrel::camera {

/// Where a picture is painted: 32-bit pixels, B, G, R, X in memory, in physical pixels.
struct GlassTarget {
  std::uint8_t* pixels = nullptr;
  int stride = 0;  ///< bytes from one row to the next
  PixelSize size;
  bool isMirrored = false;
  /// The part of the picture that fills the target, in fractions of the upright picture, not mirrored.
  Rect part = {0, 0, 1, 1};
};

/// The picture side of a stream: what a window needs to paint the newest frame. Main thread only.
class GlassSource {
 public:
  virtual ~GlassSource() = default;

  /// The size of the pictures that arrive, upright; 0 × 0 while there is nothing to show (no good frame yet,
  /// cleared, stopped). The glass letter-boxes by it.
  [[nodiscard]] virtual PixelSize pictureSize() const = 0;

  /// Tells the size in physical pixels at which whole pictures would be painted, so that decoding does no
  /// more. Where a part of them fills the glass, that is larger than the glass.
  virtual void setGlassSize(PixelSize size) = 0;

  /// Called from the main loop when a newer picture than the painted one can be painted, and when the picture
  /// was dropped. At most one call is outstanding until `paint`.
  virtual void setPictureHandler(std::function<void()> handler) = 0;

  /// Scales, converts, turns upright and mirrors the part of the newest picture that `target` asks for, into
  /// all of it. False when there is no picture.
  virtual bool paint(const GlassTarget& target) = 0;
};

}  // namespace vistrel::camera
