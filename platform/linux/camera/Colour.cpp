#include "linux/camera/Colour.h"

namespace vistrel::camera {

YuvColour decideColour(PixelFormat format, SourceColour source) {
  if (format == PixelFormat::Mjpeg) return YuvColour::Bt601Full;
  const bool isFull = source.range == ColourRange::Full;
  if (source.matrix == ColourMatrix::Bt709) return isFull ? YuvColour::Bt709Full : YuvColour::Bt709Limited;
  return isFull ? YuvColour::Bt601Full : YuvColour::Bt601Limited;
}

}  // namespace vistrel::camera
