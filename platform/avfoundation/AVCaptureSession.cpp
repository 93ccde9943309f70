#include "avfoundation/AVCaptureSession.h"

#include <algorithm>
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
constexpr std::chrono::milliseconds kLongestStart = 10s;
constexpr std::chrono::milliseconds kLongestSilence = 3s;
constexpr std::chrono::milliseconds kBetweenLooks = 1s;

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
  silence_ = 0ms;
  if (outcome != backend::StreamStart::Failed) lookAgainAfter(kBetweenLooks);
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

void AVCaptureSession::lookAgainAfter(std::chrono::milliseconds delay) {
  delay_ = delay;
  watchdog_ = backend::current().mainLoop().after(delay, [this] { lookForFrames(); });
}

// A program that stood still (stopped, swapped out) looks late, and its frames wait for it: of the time since
// the last look no more counts than was to pass.
void AVCaptureSession::lookForFrames() {
  auto& stream = input_->stream();
  silence_ = std::min(stream.silence(), silence_ + delay_);
  const auto left = (stream.hasSentPicture() ? kLongestSilence : kLongestStart) - silence_;
  if (left > 0ms) return lookAgainAfter(std::min(left, kBetweenLooks));
  const bool isUnusable = stream.sendsUnusableFrames();
  streamDidFail({isUnusable ? translatable("The camera sends pictures that cannot be shown.")
                            : translatable("The camera sends no pictures.")});
}

}  // namespace vistrel
