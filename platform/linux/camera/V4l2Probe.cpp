#include "linux/camera/V4l2Probe.h"

#include <linux/videodev2.h>
#include <string.h>  // strnlen, which is POSIX only

#include <cerrno>
#include <thread>
#include <utility>

#include "foundation/Unicode.h"
#include "linux/camera/V4l2Formats.h"

namespace vistrel::capture {
namespace {

// The kernel cuts a long name off, if need be in the middle of a character.
std::string cardOf(const v4l2_capability& capability) {
  const auto* card = reinterpret_cast<const char*>(capability.card);
  return unicode::repairedUtf8({card, strnlen(card, sizeof capability.card)});
}

// A camera that may not be opened now is still one: choosing it tells why.
bool mayBecomeUsable(int error) { return error == -EACCES || error == -EPERM || error == -EBUSY; }

V4l2Probe::Answer cameraAt(V4l2System& system, const std::string& path) {
  const int fd = system.open(path);
  if (fd < 0) {
    if (!mayBecomeUsable(fd)) return std::nullopt;
    auto label = system.label(path);
    const bool isFirst = label.index == 0 && !label.name.empty();
    return isFirst ? V4l2Probe::Answer({std::move(label.name), {}}) : std::nullopt;
  }
  v4l2_capability capability{};
  V4l2Probe::Camera camera;
  if (system.ioctl(fd, VIDIOC_QUERYCAP, &capability) >= 0 && capturesPictures(capability))
    camera = {cardOf(capability), modesOf(system, fd)};
  system.close(fd);
  return camera.modes.empty() ? std::nullopt : V4l2Probe::Answer(std::move(camera));
}

}  // namespace

V4l2Probe::V4l2Probe(V4l2System& system, std::string path) : system_(system), path_(std::move(path)) {}

bool V4l2Probe::look() {
  const std::lock_guard lock(mutex_);
  answer_.reset();
  const bool isIdle = state_ == State::Idle;
  if (isIdle) std::thread([self = shared_from_this()] { self->run(); }).detach();
  state_ = isIdle ? State::Looking : State::LookingInVain;
  return isIdle;
}

std::optional<V4l2Probe::Answer> V4l2Probe::await(V4l2System::Clock::time_point deadline) {
  std::unique_lock lock(mutex_);
  system_.waitUntil(answered_, lock, deadline, [this] { return answer_.has_value(); });
  return answer_;
}

void V4l2Probe::run() {
  while (true) {
    auto answer = cameraAt(system_, path_);
    const std::lock_guard lock(mutex_);
    if (std::exchange(state_, State::Looking) == State::LookingInVain) continue;
    state_ = State::Idle;
    answer_ = std::move(answer);
    answered_.notify_all();
    return;
  }
}

}  // namespace vistrel::capture
