#include "linux/camera/V4l2Probe.h"

#include <linux/videodev2.h>
#include <string.h>  // strnlen, which is POSIX only

#include <cerrno>
#include <utility>

#include "base/Unicode.h"
#include "linux/Threads.h"
#include "linux/camera/V4l2Formats.h"

namespace vistrel::camera {
namespace {

// The kernel cuts the name that it tells of an opened device off, if need be in the middle of a character. A
// camera bears the same name before it may be opened.
std::string cardOf(const char* name) {
  return unicode::repairedUtf8({name, strnlen(name, sizeof(v4l2_capability::card) - 1)});
}

// A camera that may not be opened now is still one: choosing it tells why. A node that is denied may be
// anything else, while one in use is a camera's as a rule.
bool mayBecomeUsable(int error, const V4l2System::Label& label) {
  if (label.name.empty()) return false;
  if (error == -EBUSY) return label.index == 0;
  return (error == -EACCES || error == -EPERM) && label.seemsCamera;
}

V4l2Probe::Answer cameraAt(V4l2System& system, const std::string& path) {
  V4l2Probe::Camera camera{system.label(path), {}};
  const int fd = system.open(path);
  if (fd < 0) {
    camera.label.name = cardOf(camera.label.name.c_str());
    return mayBecomeUsable(fd, camera.label) ? V4l2Probe::Answer(std::move(camera)) : std::nullopt;
  }
  v4l2_capability capability{};
  if (system.ioctl(fd, VIDIOC_QUERYCAP, &capability) >= 0 && capturesPictures(capability))
    camera.modes = modesOf(system, fd);
  system.close(fd);
  camera.label.name = cardOf(reinterpret_cast<const char*>(capability.card));
  return camera.modes.empty() ? std::nullopt : V4l2Probe::Answer(std::move(camera));
}

}  // namespace

V4l2Probe::V4l2Probe(V4l2System& system, std::string path) : system_(system), path_(std::move(path)) {}

bool V4l2Probe::look() {
  const std::lock_guard lock(mutex_);
  answer_.reset();
  const bool isIdle = state_ == State::Idle;
  if (isIdle) {
    auto thread = desktop::startThread([self = shared_from_this()] { self->run(); });
    if (!thread) return answerUnseen(), true;
    std::move(thread).value().detach();
  }
  state_ = isIdle ? State::Looking : State::LookingInVain;
  return isIdle;
}

// Choosing such a camera tells why it cannot be had.
void V4l2Probe::answerUnseen() {
  Camera camera{system_.label(path_), {}};
  camera.label.name = cardOf(camera.label.name.c_str());
  answer_ = camera.label.seemsCamera ? Answer(std::move(camera)) : std::nullopt;
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

}  // namespace vistrel::camera
