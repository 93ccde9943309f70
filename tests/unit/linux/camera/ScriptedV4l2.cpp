#include "ScriptedV4l2.h"

#include <fcntl.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace vistrel::camera {
namespace {

template <class T>
T& as(void* argument) {
  return *static_cast<T*>(argument);
}

}  // namespace

void ScriptedV4l2::deliver(std::uint8_t value, std::uint32_t flags, std::uint32_t bytes) {
  const std::lock_guard lock(mutex_);
  if (free_.empty()) return;
  v4l2_buffer buffer{};
  buffer.index = free_.front();
  buffer.bytesused = bytes;
  buffer.flags = flags;
  free_.pop_front();
  std::fill(buffers_[buffer.index].begin(), buffers_[buffer.index].end(), value);
  filled_.push_back(buffer);
  signal(1);
}

void ScriptedV4l2::breakStream(int result) {
  const std::lock_guard lock(mutex_);
  streamResult_ = result;
  signal(1);
}

void ScriptedV4l2::breakQueue(int result) {
  const std::lock_guard lock(mutex_);
  queueResult_ = result;
}

void ScriptedV4l2::holdStreaming(bool isHeld) {
  const std::lock_guard lock(mutex_);
  isHeld_ = isHeld;
  released_.notify_all();
}

void ScriptedV4l2::holdOpening(bool isHeld) {
  const std::lock_guard lock(mutex_);
  isOpeningHeld_ = isHeld;
  released_.notify_all();
}

int ScriptedV4l2::openCount() {
  const std::lock_guard lock(mutex_);
  return static_cast<int>(opened_.size()) + opening_;
}

int ScriptedV4l2::mappedCount() {
  const std::lock_guard lock(mutex_);
  return static_cast<int>(mapped_.size());
}

std::size_t ScriptedV4l2::queuedCount() {
  const std::lock_guard lock(mutex_);
  return free_.size();
}

v4l2_pix_format ScriptedV4l2::askedFormat() {
  const std::lock_guard lock(mutex_);
  return askedFormat_;
}

v4l2_fract ScriptedV4l2::takeAskedInterval() {
  const std::lock_guard lock(mutex_);
  return std::exchange(askedInterval_, {});
}

std::vector<std::string> ScriptedV4l2::nodes() {
  std::vector<std::string> paths;
  for (const auto& [path, node] : script) paths.push_back(path);
  return paths;
}

V4l2System::Label ScriptedV4l2::label(const std::string& path) {
  const std::lock_guard lock(mutex_);
  if (!script.contains(path)) return {};
  const ScriptedNode& node = script.at(path);
  return {node.card, node.index, node.seemsCamera, node.place, DeviceLocation::External};
}

// Every opening shares one descriptor underneath, as a device has one queue.
int ScriptedV4l2::open(const std::string& path) {
  std::unique_lock lock(mutex_);
  ++opening_;
  hangWhile(lock, isOpeningHeld_);
  --opening_;
  const auto node = script.find(path);
  if (node == script.end()) return -ENOENT;
  now_ += node->second.openTakes;
  if (node->second.openResult < 0) return node->second.openResult;
  if (!ready_) ready_ = desktop::FileDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE));
  const int fd = ::fcntl(ready_.get(), F_DUPFD_CLOEXEC, 0);
  opened_[fd] = path;
  return fd;
}

void ScriptedV4l2::close(int fd) {
  const std::lock_guard lock(mutex_);
  opened_.erase(fd);
  if (owner_ == fd) owner_.reset();
  ::close(fd);
}

int ScriptedV4l2::ioctl(int fd, unsigned long request, void* argument) {
  if (request == VIDIOC_STREAMON || request == VIDIOC_STREAMOFF) return switchStream();
  const std::lock_guard lock(mutex_);
  const ScriptedNode& node = script.at(opened_.at(fd));
  switch (request) {
    case VIDIOC_G_FMT:
      as<v4l2_format>(argument).fmt.pix.width = node.modes.front().width;
      as<v4l2_format>(argument).fmt.pix.height = node.modes.front().height;
      return 0;
    case VIDIOC_S_FMT:
      return setFormat(node, as<v4l2_format>(argument));
    case VIDIOC_REQBUFS:
      if (node.buffersResult < 0) return node.buffersResult;
      if (owner_ && *owner_ != fd) return -EBUSY;
      if (as<v4l2_requestbuffers>(argument).count == 0) return 0;
      owner_ = fd;
      as<v4l2_requestbuffers>(argument).count = 3;
      buffers_.assign(3, std::vector<std::uint8_t>(kFrameBytes));
      free_.clear();
      filled_.clear();
      return 0;
    case VIDIOC_QUERYBUF:
      as<v4l2_buffer>(argument).length = kFrameBytes;
      as<v4l2_buffer>(argument).m.offset = as<v4l2_buffer>(argument).index;
      return 0;
    case VIDIOC_QBUF:
      return queue(as<v4l2_buffer>(argument));
    case VIDIOC_DQBUF:
      return dequeue(as<v4l2_buffer>(argument));
    case VIDIOC_G_SELECTION:
      if (node.source == PixelSize{} || node.tellsTimings) return -ENOTTY;
      as<v4l2_selection>(argument).r.width = static_cast<std::uint32_t>(node.source.width);
      as<v4l2_selection>(argument).r.height = static_cast<std::uint32_t>(node.source.height);
      return 0;
    case VIDIOC_G_DV_TIMINGS:
      if (!node.tellsTimings) return -ENOTTY;
      as<v4l2_dv_timings>(argument).bt.width = static_cast<std::uint32_t>(node.source.width);
      as<v4l2_dv_timings>(argument).bt.height = static_cast<std::uint32_t>(node.source.height);
      return 0;
    case VIDIOC_S_PARM:
      askedInterval_ = as<v4l2_streamparm>(argument).parm.capture.timeperframe;
      return 0;
    default:
      return enumerate(node, request, argument);
  }
}

int ScriptedV4l2::enumerate(const ScriptedNode& node, unsigned long request, void* argument) {
  if (request == VIDIOC_QUERYCAP) {
    auto& capability = as<v4l2_capability>(argument);
    node.card.copy(reinterpret_cast<char*>(capability.card), sizeof capability.card);
    capability.capabilities =
        V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_STREAMING | V4L2_CAP_META_CAPTURE | V4L2_CAP_DEVICE_CAPS;
    capability.device_caps = node.deviceCaps;
    return 0;
  }
  // A mode is a format of its own here, with one size.
  const auto find = [&](std::uint32_t format) {
    return std::find_if(node.modes.begin(), node.modes.end(),
                        [&](auto& mode) { return mode.format == format; });
  };
  if (request == VIDIOC_ENUM_FMT) {
    auto& description = as<v4l2_fmtdesc>(argument);
    if (description.index >= node.modes.size()) return -EINVAL;
    description.pixelformat = node.modes[description.index].format;
    return 0;
  }
  if (request == VIDIOC_ENUM_FRAMESIZES) {
    auto& size = as<v4l2_frmsizeenum>(argument);
    const auto mode = find(size.pixel_format);
    if (size.index > 0 || !mode->listsSizes) return -EINVAL;
    size.type = mode->rateBelow ? V4L2_FRMSIZE_TYPE_STEPWISE : V4L2_FRMSIZE_TYPE_DISCRETE;
    if (mode->rateBelow) size.stepwise = {16, mode->width, 8, 16, mode->height, 8};
    if (!mode->rateBelow) size.discrete = {mode->width, mode->height};
    return 0;
  }
  if (request != VIDIOC_ENUM_FRAMEINTERVALS) return -ENOTTY;
  auto& interval = as<v4l2_frmivalenum>(argument);
  const auto mode = find(interval.pixel_format);
  if (interval.index >= mode->rates.size()) return -EINVAL;
  if (mode->slowest) {
    interval.type = V4L2_FRMIVAL_TYPE_CONTINUOUS;
    interval.stepwise = {{1, mode->rates.front()}, {1, *mode->slowest}, {1, 1}};
    return 0;
  }
  interval.type = V4L2_FRMIVAL_TYPE_DISCRETE;
  const bool isBelow = mode->rateBelow && interval.width < mode->width;
  interval.discrete = {1, isBelow ? *mode->rateBelow : mode->rates[interval.index]};
  return 0;
}

int ScriptedV4l2::setFormat(const ScriptedNode& node, v4l2_format& format) {
  askedFormat_ = format.fmt.pix;
  if (node.grantsOtherSize) format.fmt.pix.width /= 2;
  format.fmt.pix.field = node.field;
  format.fmt.pix.bytesperline = format.fmt.pix.width * 2;
  return 0;
}

int ScriptedV4l2::queue(v4l2_buffer& buffer) {
  if (queueResult_ < 0) return queueResult_;
  free_.push_back(buffer.index);
  return 0;
}

int ScriptedV4l2::dequeue(v4l2_buffer& buffer) {
  if (streamResult_ < 0) return streamResult_;
  if (filled_.empty()) return -EAGAIN;
  buffer = filled_.front();
  filled_.pop_front();
  signal(-1);
  return 0;
}

int ScriptedV4l2::switchStream() {
  std::unique_lock lock(mutex_);
  hangWhile(lock, isHeld_);
  return 0;
}

void ScriptedV4l2::hangWhile(std::unique_lock<std::mutex>& lock, const bool& isHeld) {
  ++hanging_;
  released_.wait(lock, [&] { return !isHeld; });
  --hanging_;
}

V4l2System::Clock::time_point ScriptedV4l2::now() {
  const std::lock_guard lock(mutex_);
  return now_;
}

bool ScriptedV4l2::isDue(Clock::time_point deadline) {
  const std::lock_guard lock(mutex_);
  if (hanging_ > 0 && (isHeld_ || isOpeningHeld_)) now_ = std::max(now_, deadline);
  return now_ >= deadline;
}

bool ScriptedV4l2::waitUntil(std::condition_variable& changed, std::unique_lock<std::mutex>& lock,
                             Clock::time_point deadline, const std::function<bool()>& isDone) {
  while (!isDone() && !isDue(deadline)) changed.wait_for(lock, std::chrono::milliseconds(1));
  return isDone();
}

void ScriptedV4l2::signal(int change) {
  std::uint64_t count = 1;
  if (change > 0)
    (void)!::write(ready_.get(), &count, sizeof count);
  else
    (void)!::read(ready_.get(), &count, sizeof count);
}

const void* ScriptedV4l2::map(int, std::size_t, std::size_t offset) {
  const std::lock_guard lock(mutex_);
  mapped_.insert(buffers_[offset].data());
  return buffers_[offset].data();
}

void ScriptedV4l2::unmap(const void* memory, std::size_t) {
  const std::lock_guard lock(mutex_);
  mapped_.erase(memory);
}

}  // namespace vistrel::camera
