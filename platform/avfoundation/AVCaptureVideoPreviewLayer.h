#pragma once

#include <memory>
#include <utility>

#include "appkit/CALayer.h"
#include "avfoundation/AVCaptureSession.h"

namespace vistrel {

enum class AVLayerVideoGravity { Resize, ResizeAspect };

/// The way from a session's camera to a layer. Here it never mirrors by itself.
class AVCaptureConnection {
 public:
  [[nodiscard]] bool isVideoMirroringSupported() const { return true; }
  static void setAutomaticallyAdjustsVideoMirroring(bool /*adjusts*/) {}
  void setVideoMirrored(bool isMirrored) { isMirrored_ = isMirrored; }
  [[nodiscard]] bool isVideoMirrored() const { return isMirrored_; }

 private:
  bool isMirrored_ = false;
};

/// A layer that shows a session's picture. A backend paints it straight from the stream.
class AVCaptureVideoPreviewLayer final : public CALayer {
 public:
  explicit AVCaptureVideoPreviewLayer(std::shared_ptr<AVCaptureSession> session)
      : session_(std::move(session)) {
    if (session_->stream()) connection_ = std::make_unique<AVCaptureConnection>();
  }

  [[nodiscard]] AVLayerVideoGravity videoGravity() const { return gravity_; }
  void setVideoGravity(AVLayerVideoGravity gravity) { gravity_ = gravity; }
  /// Null when the session has no camera.
  [[nodiscard]] AVCaptureConnection* connection() const { return connection_.get(); }
  [[nodiscard]] AVCaptureSession& session() const { return *session_; }
  /// The camera whose picture is shown; null when the session has none. Lives as long as the layer.
  [[nodiscard]] backend::CameraStream* stream() const { return session_->stream(); }

 private:
  std::shared_ptr<AVCaptureSession> session_;
  std::unique_ptr<AVCaptureConnection> connection_;
  AVLayerVideoGravity gravity_ = AVLayerVideoGravity::Resize;
};

}  // namespace vistrel
