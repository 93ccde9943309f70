#include "linux/camera/V4l2Run.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "linux/Threads.h"
#include "linux/camera/CameraError.h"
#include "linux/camera/V4l2Formats.h"

namespace vistrel::camera {
namespace {

// One is on the glass, one arrives, the driver fills others.
constexpr std::uint32_t kBuffers = 4;
constexpr std::uint32_t kFewestBuffers = 2;
constexpr auto kType = V4L2_BUF_TYPE_VIDEO_CAPTURE;

v4l2_buffer bufferAt(std::uint32_t index) {
  v4l2_buffer buffer{};
  buffer.index = index;
  buffer.type = kType;
  buffer.memory = V4L2_MEMORY_MMAP;
  return buffer;
}

// Lines that are woven already show an interlaced picture well enough.
bool comesInHalves(const v4l2_pix_format& format) {
  return format.field == V4L2_FIELD_ALTERNATE || format.field == V4L2_FIELD_SEQ_TB ||
         format.field == V4L2_FIELD_SEQ_BT;
}

}  // namespace

void V4l2Run::open() {
  auto thread = desktop::startThread([self = shared_from_this()] { self->run(); });
  if (!thread) return settle(thread.error(), State::Opened);
  thread_ = std::move(thread).value();
}

void V4l2Run::begin(const ModeChoice& mode, std::function<void()> onSettled) {
  const std::lock_guard lock(mutex_);
  mode_ = mode;
  onSettled_ = std::move(onSettled);
  if (state_ == State::Opened) state_ = State::Starting;
  changed_.notify_all();
}

V4l2Run::State V4l2Run::await(V4l2System::Clock::time_point deadline) {
  std::unique_lock lock(mutex_);
  system_.waitUntil(changed_, lock, deadline,
                    [this] { return state_ != State::Opening && state_ != State::Starting; });
  return state_;
}

void V4l2Run::end(V4l2System::Clock::time_point deadline) {
  if (!thread_.joinable()) return;
  bool hasEnded = false;
  {
    const std::lock_guard lock(mutex_);
    shallEnd_ = true;
    changed_.notify_all();
  }
  node_.seat->wake();
  {
    std::unique_lock lock(mutex_);
    hasEnded = system_.waitUntil(changed_, lock, deadline, [this] { return state_ == State::Ended; });
  }
  // The thread holds this object, so that a driver that hangs can be left to itself.
  if (hasEnded)
    thread_.join();
  else
    thread_.detach();
}

void V4l2Run::run() {
  if (node_.seat->take([this] { return shallEnd(); })) {
    openUntilEnd();
    node_.seat->leave();
  }
  const std::lock_guard lock(mutex_);
  state_ = State::Ended;
  changed_.notify_all();
}

bool V4l2Run::shallEnd() {
  const std::lock_guard lock(mutex_);
  return shallEnd_;
}

void V4l2Run::openUntilEnd() {
  settle(openDevice(), State::Opened);
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return mode_ || shallEnd_; });
  if (!shallEnd_ && state_ == State::Starting) {
    lock.unlock();
    settle(prepare(*mode_), State::Running);
    lock.lock();
  }
  changed_.wait(lock, [this] { return shallEnd_; });
  lock.unlock();
  close();
}

Result<void> V4l2Run::openDevice() {
  const int fd = system_.open(node_.path);
  if (fd < 0) return errorOfCall(-fd, system_.groupOf(node_.path));
  fd_ = fd;
  if (isBusy(system_, fd_)) return errorOf(CameraError::Busy);
  modes_ = modesOf(system_, fd_);
  return {};
}

// Whoever is told may be gone once `end` has been called: that waits for the lock.
void V4l2Run::settle(const Result<void>& result, State success) {
  const std::lock_guard lock(mutex_);
  if (!result) error_ = result.error();
  const bool goesOn = result && success == State::Opened && mode_;
  if (goesOn) success = State::Starting;
  state_ = result ? success : State::Failed;
  changed_.notify_all();
  if (onSettled_ && !goesOn && !shallEnd_) onSettled_();
}

Result<void> V4l2Run::prepare(const ModeChoice& mode) {
  if (auto result = setFormat(mode); !result) return result;
  setRate(mode);
  int result = makeBuffers();
  int type = kType;
  if (result >= 0) result = system_.ioctl(fd_, VIDIOC_STREAMON, &type);
  return result >= 0 ? Result<void>() : errorOfCall(-result);
}

// Drivers answer a format that they do not like with another one.
Result<void> V4l2Run::setFormat(const ModeChoice& mode) {
  v4l2_format format{};
  format.type = kType;
  format.fmt.pix.width = static_cast<std::uint32_t>(mode.size.width);
  format.fmt.pix.height = static_cast<std::uint32_t>(mode.size.height);
  format.fmt.pix.pixelformat = mode.nativeFormat;
  format.fmt.pix.field = V4L2_FIELD_ANY;
  const int result = system_.ioctl(fd_, VIDIOC_S_FMT, &format);
  if (result < 0) return errorOfCall(-result);
  format_ = format.fmt.pix;
  if (comesInHalves(format_))
    return Error{translatable("The camera sends every second line of a picture by itself.")};
  const bool isGranted = format_.pixelformat == mode.nativeFormat &&
                         static_cast<int>(format_.width) == mode.size.width &&
                         static_cast<int>(format_.height) == mode.size.height;
  return isGranted ? Result<void>() : Error{translatable("The camera refused the picture format.")};
}

// A driver without a settable rate delivers at its own.
void V4l2Run::setRate(const ModeChoice& mode) {
  if (!mode.rate) return;
  v4l2_streamparm parameters{};
  parameters.type = kType;
  parameters.parm.capture.timeperframe = {mode.rate->denominator, mode.rate->numerator};
  system_.ioctl(fd_, VIDIOC_S_PARM, &parameters);
}

int V4l2Run::makeBuffers() {
  v4l2_requestbuffers request{};
  request.count = kBuffers;
  request.type = kType;
  request.memory = V4L2_MEMORY_MMAP;
  if (const int result = system_.ioctl(fd_, VIDIOC_REQBUFS, &request); result < 0) return result;
  if (request.count < kFewestBuffers) return -ENOMEM;
  for (std::uint32_t i = 0; i < request.count; ++i)
    if (const int result = mapBuffer(i); result < 0) return result;
  return 0;
}

int V4l2Run::mapBuffer(std::uint32_t index) {
  auto buffer = bufferAt(index);
  if (const int result = system_.ioctl(fd_, VIDIOC_QUERYBUF, &buffer); result < 0) return result;
  const void* memory = system_.map(fd_, buffer.length, buffer.m.offset);
  if (!memory) return -ENOMEM;
  buffers_.push_back({memory, buffer.length});
  return system_.ioctl(fd_, VIDIOC_QBUF, &buffer);
}

Result<std::optional<V4l2Run::Filled>> V4l2Run::take() {
  auto buffer = bufferAt(0);
  const int result = system_.ioctl(fd_, VIDIOC_DQBUF, &buffer);
  if (result == -EAGAIN) return std::optional<Filled>();
  if (result < 0) return errorOfCall(-result);
  if (buffer.index >= buffers_.size()) return errorOfCall(EPROTO);
  const Buffer& memory = buffers_[buffer.index];
  const auto used = std::min<std::size_t>(buffer.bytesused, memory.length);
  const bool isDamaged = (buffer.flags & V4L2_BUF_FLAG_ERROR) != 0 || used == 0;
  return std::optional(
      Filled{buffer.index, {static_cast<const std::uint8_t*>(memory.memory), used}, isDamaged});
}

Result<void> V4l2Run::giveBack(std::uint32_t index) {
  auto buffer = bufferAt(index);
  const int result = system_.ioctl(fd_, VIDIOC_QBUF, &buffer);
  return result < 0 ? errorOfCall(-result) : Result<void>();
}

void V4l2Run::close() {
  if (fd_ < 0) return;
  int type = kType;
  system_.ioctl(fd_, VIDIOC_STREAMOFF, &type);
  for (const Buffer& buffer : buffers_) system_.unmap(buffer.memory, buffer.length);
  buffers_.clear();
  system_.close(fd_);
  fd_ = -1;
}

}  // namespace vistrel::camera
