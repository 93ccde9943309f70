#include "avfoundation/AVCaptureSession.h"

#include <chrono>
#include <optional>
#include <utility>

#include "appkit/CALayer.h"
#include "backend/Backend.h"
#include "foundation/NotificationCenter.h"

namespace vistrel {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds kStartPatience = 250ms;
constexpr std::chrono::milliseconds kLongestSilence = 3s;

std::optional<PixelSize> sizeOf(const std::string& preset) {
  if (preset == AVCaptureSessionPreset3840x2160) return PixelSize{3840, 2160};
  if (preset == AVCaptureSessionPreset1920x1080) return PixelSize{1920, 1080};
  if (preset == AVCaptureSessionPreset1280x720) return PixelSize{1280, 720};
  return std::nullopt;
}

}  // namespace

Result<std::unique_ptr<AVCaptureDeviceInput>> AVCaptureDeviceInput::create(const AVCaptureDevice& device) {
  auto stream = backend::current().cameras().open(device.uniqueID());
  if (!stream) return stream.error();
  return std::make_unique<AVCaptureDeviceInput>(std::move(stream).value());
}

AVCaptureSession::~AVCaptureSession() {
  if (input_) input_->stream().stop();
}

void AVCaptureSession::addInput(std::unique_ptr<AVCaptureDeviceInput> input) { input_ = std::move(input); }

bool AVCaptureSession::canSetSessionPreset(const std::string& preset) const {
  const auto size = sizeOf(preset);
  return size && input_ && input_->stream().supports(*size);
}

void AVCaptureSession::startRunning() {
  if (std::exchange(isRunning_, true)) return;
  if (!input_) {
    didStart();
    return;
  }
  input_->stream().begin(sizeOf(preset_), *this);
  CATransaction::flush();
  const auto outcome = input_->stream().awaitStart(kStartPatience);
  if (outcome != backend::StreamStart::Failed) armWatchdog(kLongestSilence, Look::First);
  if (outcome == backend::StreamStart::Running) didStart();
}

void AVCaptureSession::didStart() {
  hasStarted_ = true;
  NotificationCenter::defaultCenter().post(AVCaptureSessionDidStartRunningNotification, this);
}

void AVCaptureSession::stopRunning() {
  if (!std::exchange(isRunning_, false)) return;
  const auto kept = shared_from_this();
  watchdog_.reset();
  CATransaction::flush();
  if (input_) input_->stream().stop();
  if (!std::exchange(hasStarted_, false)) return;
  NotificationCenter::defaultCenter().post(AVCaptureSessionDidStopRunningNotification, this);
}

void AVCaptureSession::streamDidStart() {
  if (isRunning_ && !hasStarted_) didStart();
}

void AVCaptureSession::streamDidFail(const Error& error) {
  if (!std::exchange(isRunning_, false)) return;
  const auto kept = shared_from_this();
  // A copy of its own: what the argument refers to may go while this runs.
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
  const Error reason = error;
  watchdog_.reset();
  hasStarted_ = false;
  input_->stream().clearPicture();
  input_->stream().stop();
  NotificationCenter::defaultCenter().post(AVCaptureSessionRuntimeErrorNotification, this,
                                           {{AVCaptureSessionErrorKey, reason}});
}

void AVCaptureSession::armWatchdog(std::chrono::milliseconds delay, Look look) {
  watchdog_ = backend::current().mainLoop().after(delay, [this, look] { lookForFrames(look); });
}

// The frames of a loop that stood still wait in it: before a camera counts as silent, they are let in.
void AVCaptureSession::lookForFrames(Look look) {
  const auto left = kLongestSilence - input_->stream().silence();
  if (left > 0ms) {
    armWatchdog(left, Look::First);
  } else if (look == Look::First) {
    armWatchdog(0ms, Look::Second);
  } else {
    const bool isUnusable = input_->stream().sendsUnusableFrames();
    streamDidFail(
        {isUnusable ? "The camera sends pictures that cannot be shown." : "The camera sends no pictures."});
  }
}

}  // namespace vistrel
