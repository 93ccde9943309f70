#include "avfoundation/AVCaptureVideoPreviewLayer.h"

#include <utility>

namespace vistrel {

AVCaptureVideoPreviewLayer::AVCaptureVideoPreviewLayer(std::shared_ptr<AVCaptureSession> session)
    : session_(std::move(session)) {
  if (session_->stream()) connection_ = std::make_unique<AVCaptureConnection>();
}

}  // namespace vistrel
