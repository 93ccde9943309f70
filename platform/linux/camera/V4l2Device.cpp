#include "linux/camera/V4l2Device.h"

#include <utility>

#include "linux/camera/CameraError.h"
#include "linux/camera/V4l2Formats.h"

namespace vistrel::camera {
namespace {

constexpr std::chrono::milliseconds kOpeningPatience{250};
constexpr std::chrono::milliseconds kClosingPatience{90};

}  // namespace

Result<std::unique_ptr<CaptureDevice>> V4l2Device::open(desktop::Reactor& reactor, V4l2System& system,
                                                        const V4l2Node& node,
                                                        const std::vector<VideoMode>& knownModes) {
  const auto asked = system.now();
  const auto deadline = asked + kOpeningPatience;
  auto run = std::make_shared<V4l2Run>(system, node);
  run->open();
  const auto state = run->await(deadline);
  const bool isOpening = state == V4l2Run::State::Opening;
  if (state != V4l2Run::State::Opened && (!isOpening || knownModes.empty())) {
    run->end(deadline);
    return isOpening ? errorOf(CameraError::Silent) : run->error();
  }
  auto device = std::unique_ptr<V4l2Device>(new V4l2Device(reactor, system, node, run));
  device->modes_ = isOpening ? knownModes : run->modes();
  device->waited_ = system.now() - asked;
  return std::unique_ptr<CaptureDevice>(std::move(device));
}

V4l2Device::V4l2Device(desktop::Reactor& reactor, V4l2System& system, V4l2Node node,
                       std::shared_ptr<V4l2Run> run)
    : reactor_(reactor), system_(system), node_(std::move(node)), run_(std::move(run)) {}

V4l2Device::~V4l2Device() { close(closingDeadline()); }

void V4l2Device::begin(const ModeChoice& mode, CaptureClient& client) {
  stop();
  client_ = &client;
  mode_ = mode;
  self_ = std::make_shared<V4l2Device*>(this);
  if (!run_) {
    run_ = std::make_shared<V4l2Run>(system_, node_);
    run_->open();
  }
  run_->begin(mode, [&reactor = reactor_, self = std::weak_ptr(self_)] {
    reactor.post([self] {
      if (const auto device = self.lock()) (*device)->settle();
    });
  });
}

backend::StreamStart V4l2Device::awaitStart(std::chrono::milliseconds patience) {
  if (failure_) return backend::StreamStart::Failed;
  const auto deadline = system_.now() + patience - std::exchange(waited_, {});
  const auto state = run_->await(deadline);
  isStartUntold_ = state == V4l2Run::State::Starting || state == V4l2Run::State::Opening;
  if (isStartUntold_) return backend::StreamStart::Pending;
  if (state != V4l2Run::State::Running) {
    failLater(run_->error(), deadline);
    return backend::StreamStart::Failed;
  }
  watchFrames();
  return backend::StreamStart::Running;
}

// Before a start the opened device stays so.
void V4l2Device::stop() {
  if (!self_) return;
  close(closingDeadline());
  client_ = nullptr;
  failure_.reset();
}

V4l2Device::Clock::time_point V4l2Device::closingDeadline() const { return system_.now() + kClosingPatience; }

void V4l2Device::close(Clock::time_point deadline) {
  self_.reset();
  registration_.reset();
  held_.reset();
  isStartUntold_ = false;
  if (run_) run_->end(deadline);
  run_.reset();
}

void V4l2Device::failLater(Error error, Clock::time_point closingDeadline) {
  close(closingDeadline);
  failure_ = std::move(error);
  self_ = std::make_shared<V4l2Device*>(this);
  reactor_.post([self = std::weak_ptr(self_)] {
    if (const auto device = self.lock()) (*device)->tellFailure();
  });
}

// The last thing that happens: the client may destroy this device.
void V4l2Device::tellFailure() {
  const Error error = *std::exchange(failure_, std::nullopt);
  if (auto* client = std::exchange(client_, nullptr)) client->captureFailed(error);
}

// A start that was pending has come to an end.
void V4l2Device::settle() {
  if (!std::exchange(isStartUntold_, false)) return;
  if (run_->await({}) != V4l2Run::State::Running) return failLater(run_->error(), closingDeadline());
  watchFrames();
  client_->captureStarted();
}

void V4l2Device::watchFrames() {
  registration_ = reactor_.watch(run_->fd(), [this] { takeFrames(); });
}

void V4l2Device::takeFrames() {
  bool hasNewer = false;
  bool hasUnusable = false;
  while (true) {
    const auto filled = run_->take();
    if (!filled) return failLater(filled.error(), closingDeadline());
    if (!filled.value()) break;
    const bool isUsable = frameIn(*filled.value()).has_value();
    hasUnusable = hasUnusable || !isUsable;
    const auto given = isUsable ? hold(*filled.value()) : run_->giveBack(filled.value()->index);
    if (!given) return failLater(given.error(), closingDeadline());
    hasNewer = hasNewer || isUsable;
  }
  if (hasUnusable) client_->unusableFrameArrived();
  if (hasNewer) client_->frameArrived();
}

Result<void> V4l2Device::hold(const V4l2Run::Filled& filled) {
  const auto before = std::exchange(held_, filled);
  return before ? run_->giveBack(before->index) : Result<void>();
}

std::optional<Frame> V4l2Device::frame() const { return held_ ? frameIn(*held_) : std::nullopt; }

std::optional<Frame> V4l2Device::frameIn(const V4l2Run::Filled& filled) const {
  if (filled.isDamaged) return std::nullopt;
  if (mode_->format == PixelFormat::Mjpeg) return filled.bytes;
  const auto& format = run_->format();
  const PlaneMemory memory{filled.bytes, static_cast<int>(format.bytesperline)};
  const auto picture =
      pictureIn({&memory, 1}, mode_->format, mode_->size, decideColor(mode_->format, colorOf(format)));
  return picture ? std::optional<Frame>(*picture) : std::nullopt;
}

}  // namespace vistrel::camera
