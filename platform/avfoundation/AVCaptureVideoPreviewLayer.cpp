#include "avfoundation/AVCaptureVideoPreviewLayer.h"

#include <algorithm>

#include "appkit/NSView.h"

namespace vistrel {

AVCaptureVideoPreviewLayer::AVCaptureVideoPreviewLayer(std::shared_ptr<AVCaptureSession> session)
    : session_(std::move(session)) {
  if (session_->stream()) connection_ = std::make_unique<AVCaptureConnection>();
}

Rect AVCaptureVideoPreviewLayer::pictureRect() const {
  const Size glass = owner() ? Size{owner()->frame().width, owner()->frame().height} : Size{};
  const PixelSize picture = stream() ? stream()->pictureSize() : PixelSize{};
  if (picture.width <= 0 || picture.height <= 0) return {};
  if (gravity_ == AVLayerVideoGravity::Resize) return {0, 0, glass.width, glass.height};
  const double scale = std::min(glass.width / picture.width, glass.height / picture.height);
  const Size size{picture.width * scale, picture.height * scale};
  return {(glass.width - size.width) / 2, (glass.height - size.height) / 2, size.width, size.height};
}

void AVCaptureVideoPreviewLayer::magnify(double ratio, Point around) {
  const Rect rect = pictureRect();
  if (rect.isEmpty() || !(ratio > 0)) return;
  const double across = std::clamp((around.x - rect.x) / rect.width, 0.0, 1.0);
  const double down = std::clamp((around.y - rect.y) / rect.height, 0.0, 1.0);
  const Rect& part = zoom_.part();
  zoom_.magnify(ratio,
                {part.x + part.width * (isMirrored() ? 1 - across : across), part.y + part.height * down});
  setNeedsDisplay();
}

void AVCaptureVideoPreviewLayer::pan(double across, double down) {
  const Rect rect = pictureRect();
  if (rect.isEmpty()) return;
  const double share = across / rect.width * zoom_.part().width;
  zoom_.pan(isMirrored() ? -share : share, down / rect.height * zoom_.part().height);
  setNeedsDisplay();
}

void AVCaptureVideoPreviewLayer::resetMagnification() {
  zoom_ = {};
  setNeedsDisplay();
}

}  // namespace vistrel
