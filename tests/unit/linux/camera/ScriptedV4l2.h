#pragma once

#include <linux/videodev2.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Geometry.h"
#include "linux/FileDescriptor.h"
#include "linux/camera/V4l2System.h"

namespace vistrel::camera {

/// What a scripted node is and how it behaves.
struct ScriptedNode {
  std::string card = "Camera";
  std::uint32_t deviceCaps = V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_STREAMING;
  struct Mode {
    std::uint32_t format = V4L2_PIX_FMT_YUYV;
    std::uint32_t width = 64;
    std::uint32_t height = 48;
    std::vector<std::uint32_t> rates{30};
    /// Sizes from 16 × 16 in steps of 8 up to the one above, and the rate at all that are smaller.
    std::optional<std::uint32_t> rateBelow{};
    /// Makes the first rate the end of a range that begins here.
    std::optional<std::uint32_t> slowest{};
    /// An old driver tells its size only as the one that is set.
    bool listsSizes = true;
  };
  std::vector<Mode> modes{Mode{}};
  int index = 0;
  bool seemsCamera = true;
  bool isAlias = false;
  std::string place{};
  std::string group{};
  std::chrono::milliseconds openTakes{};
  int openResult = 0;     ///< or a negative errno
  int buffersResult = 0;  ///< of asking for buffers
  bool grantsOtherSize = false;
  std::uint32_t field = V4L2_FIELD_NONE;
  PixelSize source{};   ///< what a driver that scales says of what it sees
  bool tellsTimings{};  ///< and that it says so as timings only
};

/// A kernel with cameras by script. Readiness is a real descriptor, so that a real loop can wait for it. Its
/// clock moves only when the script says that something takes time, and when somebody waits for a call that
/// hangs.
class ScriptedV4l2 final : public V4l2System {
 public:
  std::map<std::string, ScriptedNode> script;

  static constexpr std::uint32_t kFrameBytes = 6144;  // 64 × 48 of packed 4:2:2

  /// Fills the next free buffer of the running node with bytes of one value.
  void deliver(std::uint8_t value, std::uint32_t flags = 0, std::uint32_t bytes = kFrameBytes);
  /// Lets every further asking for a filled buffer answer this negative errno.
  void breakStream(int result);
  /// The same for every further giving back of a buffer.
  void breakQueue(int result);
  /// While held, switching a stream on or off does not return.
  void holdStreaming(bool isHeld);
  /// While held, opening does not return.
  void holdOpening(bool isHeld);

  /// Nodes that are open or are being opened.
  [[nodiscard]] int openCount();
  [[nodiscard]] int mappedCount();
  [[nodiscard]] std::size_t queuedCount();
  /// What the driver was asked for the last time.
  [[nodiscard]] v4l2_pix_format askedFormat();
  [[nodiscard]] v4l2_fract takeAskedInterval();

  std::vector<std::string> nodes() override;
  bool isAlias(const std::string& path) override { return script.contains(path) && script.at(path).isAlias; }
  Label label(const std::string& path) override;
  std::string groupOf(const std::string& path) override { return script[path].group; }
  int open(const std::string& path) override;
  void close(int fd) override;
  int ioctl(int fd, unsigned long request, void* argument) override;
  const void* map(int fd, std::size_t length, std::size_t offset) override;
  void unmap(const void* memory, std::size_t length) override;
  Clock::time_point now() override;
  bool waitUntil(std::condition_variable& changed, std::unique_lock<std::mutex>& lock,
                 Clock::time_point deadline, const std::function<bool()>& isDone) override;

 private:
  int enumerate(const ScriptedNode& node, unsigned long request, void* argument);
  int setFormat(const ScriptedNode& node, v4l2_format& format);
  int queue(v4l2_buffer& buffer);
  int dequeue(v4l2_buffer& buffer);
  int switchStream();
  void hangWhile(std::unique_lock<std::mutex>& lock, const bool& isHeld);
  bool isDue(Clock::time_point deadline);
  void signal(int change);

  std::mutex mutex_;
  std::condition_variable released_;
  bool isHeld_ = false;
  bool isOpeningHeld_ = false;
  int opening_ = 0;
  int hanging_ = 0;
  Clock::time_point now_;
  int streamResult_ = 0;
  int queueResult_ = 0;
  v4l2_pix_format askedFormat_{};
  v4l2_fract askedInterval_{};
  std::map<int, std::string> opened_;
  std::optional<int> owner_;  ///< of the buffers: the others are told that the device is busy
  desktop::FileDescriptor ready_;
  std::vector<std::vector<std::uint8_t>> buffers_;
  std::deque<std::uint32_t> free_;
  std::deque<v4l2_buffer> filled_;
  std::set<const void*> mapped_;
};

}  // namespace vistrel::camera
