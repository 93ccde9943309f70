#include "linux/camera/Color.h"

namespace vistrel::camera {

YuvColor decideColor(PixelFormat format, SourceColor source) {
  if (format == PixelFormat::Mjpeg) return YuvColor::Bt601Full;
  const bool isFull = source.range == ColorRange::Full;
  if (source.matrix == ColorMatrix::Bt709) return isFull ? YuvColor::Bt709Full : YuvColor::Bt709Limited;
  return isFull ? YuvColor::Bt601Full : YuvColor::Bt601Limited;
}

}  // namespace vistrel::camera
