#include "linux/camera/V4l2Device.h"

#include <utility>

#include "linux/camera/Problem.h"
#include "linux/camera/V4l2Formats.h"

namespace vistrel::capture {
namespace {

constexpr std::chrono::milliseconds kOpeningPatience{250};
constexpr std::chrono::milliseconds kClosingPatience{90};

}  // namespace

Result<std::unique_ptr<CaptureDevice>> V4l2Device::open(Reactor& reactor, V4l2System& system,
                                                        const std::string& path) {
  auto run = std::make_shared<V4l2Run>(system, path);
  run->open();
  const auto state = run->await(kOpeningPatience);
  if (state == V4l2Run::State::Opened)
    return std::unique_ptr<CaptureDevice>(new V4l2Device(reactor, system, path, std::move(run)));
  run->end(state == V4l2Run::State::Opening ? std::chrono::milliseconds() : kClosingPatience);
  return state == V4l2Run::State::Opening ? errorOf(Problem::Silent) : run->error();
}

V4l2Device::V4l2Device(Reactor& reactor, V4l2System& system, std::string path, std::shared_ptr<V4l2Run> run)
    : reactor_(reactor),
      system_(system),
      path_(std::move(path)),
      modes_(run->modes()),
      run_(std::move(run)) {}

V4l2Device::~V4l2Device() { close(); }

void V4l2Device::begin(const ModeChoice& mode, CaptureClient& client) {
  stop();
  client_ = &client;
  mode_ = mode;
  self_ = std::make_shared<V4l2Device*>(this);
  if (!run_) {
    run_ = std::make_shared<V4l2Run>(system_, path_);
    run_->open();
  }
  run_->begin(mode, [&reactor = reactor_, self = std::weak_ptr(self_)] {
    reactor.post([self] {
      if (const auto device = self.lock()) (*device)->settle();
    });
  });
}

host::StreamStart V4l2Device::awaitStart(std::chrono::milliseconds patience) {
  if (failure_) return host::StreamStart::Failed;
  const auto state = run_->await(patience);
  isStartUntold_ = state == V4l2Run::State::Starting || state == V4l2Run::State::Opening;
  if (isStartUntold_) return host::StreamStart::Pending;
  if (state != V4l2Run::State::Running) {
    failLater(run_->error());
    return host::StreamStart::Failed;
  }
  watchFrames();
  return host::StreamStart::Running;
}

// Before a start the opened device stays so.
void V4l2Device::stop() {
  if (!self_) return;
  close();
  client_ = nullptr;
  failure_.reset();
}

void V4l2Device::close() {
  self_.reset();
  registration_.reset();
  held_.reset();
  isStartUntold_ = false;
  if (run_) run_->end(kClosingPatience);
  run_.reset();
}

void V4l2Device::failLater(Error error) {
  close();
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
  if (run_->await({}) != V4l2Run::State::Running) return failLater(run_->error());
  watchFrames();
  client_->captureStarted();
}

void V4l2Device::watchFrames() {
  registration_ = reactor_.watch(run_->fd(), [this] { takeFrames(); });
}

void V4l2Device::takeFrames() {
  bool hasNewer = false;
  while (true) {
    const auto filled = run_->take();
    if (!filled) return failLater(filled.error());
    if (!filled.value()) break;
    hasNewer = hold(*filled.value()) || hasNewer;
  }
  if (hasNewer) client_->frameArrived();
}

// A damaged one goes back unseen.
bool V4l2Device::hold(const V4l2Run::Filled& filled) {
  if (filled.isDamaged) return run_->giveBack(filled.index), false;
  if (held_) run_->giveBack(held_->index);
  held_ = filled;
  return true;
}

std::optional<Frame> V4l2Device::frame() const {
  if (!held_) return std::nullopt;
  if (mode_->format == PixelFormat::Mjpeg) return held_->bytes;
  const auto& format = run_->format();
  const PlaneMemory memory{held_->bytes, static_cast<int>(format.bytesperline)};
  const auto picture =
      pictureIn({&memory, 1}, mode_->format, mode_->size, decideColour(mode_->format, colourOf(format)));
  return picture ? std::optional<Frame>(*picture) : std::nullopt;
}

}  // namespace vistrel::capture
