#pragma once

#include "linux/camera/GlassSource.h"
#include "linux/camera/Picture.h"
#include "linux/camera/PlaneScaler.h"
#include "linux/camera/Scratch.h"

namespace vistrel::capture {

/// Scales, converts and mirrors a picture into a glass, all at the glass's size. Keeps its working memory
/// from one picture to the next.
class PictureConverter {
 public:
  /// Fills all of `target`, whose size must not be empty.
  void convert(const Picture& picture, const GlassTarget& target);

 private:
  [[nodiscard]] Picture toPlanar(const Picture& picture, PixelSize glass);
  [[nodiscard]] Picture scaled(const Picture& picture, PixelSize glass);
  [[nodiscard]] Picture scaledSemiPlanar(const Picture& picture, PixelSize glass);
  [[nodiscard]] Picture toRgb32(const Picture& picture, PixelSize glass);
  void paintYuv(const Picture& picture, const GlassTarget& target);
  void paintRgb(const Picture& picture, const GlassTarget& target);

  PlaneScaler scaler_;
  Scratch rows_;
  Scratch planar_;
  Scratch scaled_;
  Scratch band_;
};

}  // namespace vistrel::capture
