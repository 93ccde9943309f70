#pragma once

#include <memory>
#include <utility>

#include "appkit/CALayer.h"
#include "avfoundation/AVCaptureSession.h"
#include "avfoundation/PictureZoom.h"

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

/// A layer that shows a session's picture, or a magnified part of it. A backend paints it straight from the
/// stream.
class AVCaptureVideoPreviewLayer final : public CALayer {
 public:
  explicit AVCaptureVideoPreviewLayer(std::shared_ptr<AVCaptureSession> session);

  [[nodiscard]] AVLayerVideoGravity videoGravity() const { return gravity_; }
  void setVideoGravity(AVLayerVideoGravity gravity) { gravity_ = gravity; }
  /// Null when the session has no camera.
  [[nodiscard]] AVCaptureConnection* connection() const { return connection_.get(); }
  [[nodiscard]] AVCaptureSession& session() const { return *session_; }
  /// The camera whose picture is shown; null when the session has none. Lives as long as the layer.
  [[nodiscard]] backend::CameraStream* stream() const { return session_->stream(); }

  [[nodiscard]] bool isMirrored() const { return connection_ && connection_->isVideoMirrored(); }
  /// The part of the picture that is seen, in fractions of the upright picture as the camera sends it, not
  /// mirrored.
  [[nodiscard]] const Rect& contentsRect() const { return zoom_.part(); }
  /// Magnifies what is seen around a point of the layer, in points; 1 to 4 times in all.
  void magnify(double ratio, Point around);
  void resetMagnification();
  /// Moves the part that is seen by that many points of the glass, as it is seen there.
  void pan(double across, double down);

 private:
  /// Where the picture lies in the layer; empty while there is none.
  [[nodiscard]] Rect pictureRect() const;

  std::shared_ptr<AVCaptureSession> session_;
  std::unique_ptr<AVCaptureConnection> connection_;
  AVLayerVideoGravity gravity_ = AVLayerVideoGravity::Resize;
  PictureZoom zoom_;
};

}  // namespace vistrel
