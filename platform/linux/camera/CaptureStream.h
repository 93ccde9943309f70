#pragma once

#include <chrono>
#include <memory>

#include "backend/Camera.h"
#include "linux/Reactor.h"
#include "linux/camera/CaptureDevice.h"
#include "linux/camera/DecodeThread.h"
#include "linux/camera/GlassSource.h"
#include "linux/camera/PictureConverter.h"

namespace vistrel::camera {

/// What `CameraCenter` opens: the stream for the session and, as a `GlassSource`, the picture for the window.
/// Keeps the newest frame only and does nothing to it before a paint asks, but for JPEG, which is decoded
/// ahead on a thread as soon as the picture before it has been painted.
class CaptureStream final : public backend::CameraStream, public GlassSource, private CaptureClient {
 public:
  CaptureStream(desktop::Reactor& reactor, std::unique_ptr<CaptureDevice> device);
  ~CaptureStream() override;

  [[nodiscard]] bool supports(PixelSize size) const override;
  void begin(std::optional<PixelSize> size, backend::CameraStreamClient& client) override;
  backend::StreamStart awaitStart(std::chrono::milliseconds patience) override;
  void stop() override;
  [[nodiscard]] std::chrono::milliseconds silence() const override;
  [[nodiscard]] bool hasSentPicture() const override { return hasSentPicture_; }
  [[nodiscard]] bool sendsUnusableFrames() const override { return hasUnusableFrames_; }
  void clearPicture() override;

  /// Lets go of the device while the computer sleeps, and takes it again afterwards. The client hears nothing
  /// of it, but if the device fails then.
  void setAsleep(bool isAsleep);
  /// Points to the stream as long as there is one.
  [[nodiscard]] std::weak_ptr<CaptureStream*> handle() const { return self_; }

  [[nodiscard]] PixelSize pictureSize() const override;
  void setGlassSize(PixelSize size) override;
  void setPictureHandler(std::function<void()> handler) override;
  bool paint(const GlassTarget& target) override;

 private:
  enum class Showing { Nothing, WaitingForGoodFrame, Picture };

  void captureStarted() override;
  void frameArrived() override;
  void unusableFrameArrived() override { hasUnusableFrames_ = true; }
  void captureFailed(const Error& error) override;

  void run();
  void wake();
  Result<void> prepareDecoder();
  void noteUsable();
  void decodeNewest();
  void frameDecoded(DecodeThread::Outcome outcome);
  /// Passes the first good frame and everything after it; false while the frames are black or green.
  bool isFitToShow(const Picture& picture);
  void offerPicture();
  void tellGlass();
  [[nodiscard]] std::optional<Picture> newestPicture() const;
  /// Of the newest picture.
  [[nodiscard]] Orientation orientation() const;
  void failLater(Error error);
  void reset();

  desktop::Reactor& reactor_;
  std::unique_ptr<CaptureDevice> device_;
  backend::CameraStreamClient* client_ = nullptr;
  std::optional<ModeChoice> mode_;
  std::shared_ptr<CaptureStream*> self_;

  Showing showing_ = Showing::Nothing;
  std::chrono::steady_clock::time_point lastFrame_;
  std::optional<std::chrono::steady_clock::time_point> firstFrame_;
  std::function<void()> handler_;
  bool isGlassTold_ = false;
  bool isStarted_ = false;
  bool isAsleep_ = false;
  PixelSize glass_;
  PictureConverter converter_;

  std::unique_ptr<DecodeThread> decoder_;
  Orientation decoding_;  // of the frame that the decoder was given last
  Orientation decoded_;
  bool hasUndecodedFrame_ = false;
  bool hasSentPicture_ = false;
  bool hasUnusableFrames_ = false;
  bool hasUnpaintedPicture_ = false;
};

}  // namespace vistrel::camera
