#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "avfoundation/AVCaptureDevice.h"
#include "backend/Camera.h"
#include "backend/MainLoop.h"
#include "base/Result.h"

namespace vistrel {

inline constexpr const char* AVCaptureSessionPreset3840x2160 = "AVCaptureSessionPreset3840x2160";
inline constexpr const char* AVCaptureSessionPreset1920x1080 = "AVCaptureSessionPreset1920x1080";
inline constexpr const char* AVCaptureSessionPreset1280x720 = "AVCaptureSessionPreset1280x720";

inline constexpr const char* AVCaptureSessionRuntimeErrorNotification =
    "AVCaptureSessionRuntimeErrorNotification";
inline constexpr const char* AVCaptureSessionDidStartRunningNotification =
    "AVCaptureSessionDidStartRunningNotification";
inline constexpr const char* AVCaptureSessionDidStopRunningNotification =
    "AVCaptureSessionDidStopRunningNotification";
/// In a runtime error's user info: an `Error`.
inline constexpr const char* AVCaptureSessionErrorKey = "AVCaptureSessionErrorKey";

/// A camera that was opened to be part of a session.
class AVCaptureDeviceInput {
 public:
  /// Opens the camera. The error's message tells whether it is gone, busy or denied.
  [[nodiscard]] static Result<std::unique_ptr<AVCaptureDeviceInput>> create(const AVCaptureDevice& device);

  explicit AVCaptureDeviceInput(std::unique_ptr<backend::CameraStream> stream) : stream_(std::move(stream)) {}
  [[nodiscard]] backend::CameraStream& stream() const { return *stream_; }

 private:
  std::unique_ptr<backend::CameraStream> stream_;
};

/// Runs a camera at a preset and says what becomes of it: started, stopped, or ended by an error, ten seconds
/// without a first picture and three without a further one included. Main thread only; notifications are
/// posted on the default centre.
class AVCaptureSession final : public backend::CameraStreamClient,
                               public std::enable_shared_from_this<AVCaptureSession> {
 public:
  AVCaptureSession() = default;
  AVCaptureSession(const AVCaptureSession&) = delete;
  AVCaptureSession& operator=(const AVCaptureSession&) = delete;
  ~AVCaptureSession() override;

  void addInput(std::unique_ptr<AVCaptureDeviceInput> input);
  [[nodiscard]] bool canSetSessionPreset(const std::string& preset) const;
  void setSessionPreset(const std::string& preset) { preset_ = preset; }

  /// Returns when the session runs or has failed, or after 250 ms; a slow camera goes on starting by itself.
  /// What is meant to be on screen is there before it waits.
  void startRunning();
  void stopRunning();
  [[nodiscard]] bool isRunning() const { return isRunning_; }

  /// The opened camera; null without an input.
  [[nodiscard]] backend::CameraStream* stream() const { return input_ ? &input_->stream() : nullptr; }

  // backend::CameraStreamClient
  void streamDidStart() override;
  void streamDidFail(const Error& error) override;

 private:
  void didStart();
  void lookAgainAfter(std::chrono::milliseconds delay);
  void lookForFrames();

  std::unique_ptr<AVCaptureDeviceInput> input_;
  std::string preset_;
  std::unique_ptr<backend::Timer> watchdog_;
  std::chrono::milliseconds delay_{0};    // of the watchdog
  std::chrono::milliseconds silence_{0};  // at its last look
  bool isRunning_ = false;
  bool hasStarted_ = false;
};

}  // namespace vistrel
