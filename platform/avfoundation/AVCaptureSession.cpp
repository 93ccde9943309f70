#include "avfoundation/AVCaptureSession.h"

#include <chrono>
#include <optional>
#include <utility>

#include "foundation/NotificationCenter.h"
#include "host/Host.h"

namespace vistrel {

namespace {

using namespace std::chrono_literals;

constexpr auto kStartPatience = 250ms;
// Three looks without a frame are the three seconds after which a camera counts as silent.
constexpr auto kWatchdogInterval = 1000ms;
constexpr int kIdleLooksOfASilentCamera = 3;

std::optional<PixelSize> sizeOf(const std::string& preset) {
  if (preset == AVCaptureSessionPreset3840x2160) return PixelSize{3840, 2160};
  if (preset == AVCaptureSessionPreset1920x1080) return PixelSize{1920, 1080};
  if (preset == AVCaptureSessionPreset1280x720) return PixelSize{1280, 720};
  return std::nullopt;
}

}  // namespace

Result<std::unique_ptr<AVCaptureDeviceInput>> AVCaptureDeviceInput::create(const AVCaptureDevice& device) {
  auto stream = host::current().cameras().open(device.uniqueID());
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
  const auto outcome = input_->stream().start(sizeOf(preset_), *this, kStartPatience);
  if (outcome == host::StreamStart::Running) didStart();
  if (outcome != host::StreamStart::Failed) armWatchdog();
}

void AVCaptureSession::didStart() {
  hasStarted_ = true;
  NotificationCenter::defaultCenter().post(AVCaptureSessionDidStartRunningNotification, this);
}

void AVCaptureSession::stopRunning() {
  if (!std::exchange(isRunning_, false)) return;
  const auto kept = shared_from_this();
  watchdog_.reset();
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

void AVCaptureSession::armWatchdog() {
  watchdog_ = host::current().mainLoop().after(kWatchdogInterval, [this] { lookAtFrames(); });
}

void AVCaptureSession::lookAtFrames() {
  const auto frames = input_->stream().frameCount();
  idleLooks_ = frames == framesSeen_ ? idleLooks_ + 1 : 0;
  framesSeen_ = frames;
  if (idleLooks_ < kIdleLooksOfASilentCamera) {
    armWatchdog();
  } else {
    streamDidFail({"the camera sends no pictures"});
  }
}

}  // namespace vistrel
