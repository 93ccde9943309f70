#pragma once

#include <linux/videodev2.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <vector>

#include "foundation/Result.h"
#include "linux/camera/V4l2System.h"
#include "linux/camera/VideoMode.h"

namespace vistrel::capture {

/// One run of a device, from setting its format to closing it. A driver may block for seconds in either, so
/// both happen on a thread of the run's own, which sleeps in between; nobody waits for it without bounds.
class V4l2Run : public std::enable_shared_from_this<V4l2Run> {
 public:
  enum class State { Starting, Running, Failed, Ended };

  /// Takes the opened device over.
  V4l2Run(V4l2System& system, int fd) : system_(system), fd_(fd) {}
  V4l2Run(const V4l2Run&) = delete;
  V4l2Run& operator=(const V4l2Run&) = delete;

  /// Starts; `onSettled` is called on the run's thread once it runs or has failed.
  void begin(const ModeChoice& mode, std::function<void()> onSettled);
  /// Waits for the start within bounds and tells how it stands.
  State await(std::chrono::milliseconds patience);
  /// Stops and closes the device, waiting at most `patience` for it.
  void end(std::chrono::milliseconds patience);

  /// Why the start failed.
  [[nodiscard]] const Error& error() const { return error_; }
  /// The format that the driver settled on; while running.
  [[nodiscard]] const v4l2_pix_format& format() const { return format_; }
  [[nodiscard]] int fd() const { return fd_; }

  /// A filled buffer.
  struct Filled {
    std::uint32_t index = 0;
    std::span<const std::uint8_t> bytes;
    bool isDamaged = false;
  };
  /// The next filled buffer; none when there is none yet. The error is the errno of a failed call. While
  /// running.
  Result<std::optional<Filled>> take();
  void giveBack(std::uint32_t index);

 private:
  struct Buffer {
    const void* memory = nullptr;
    std::size_t length = 0;
  };

  void run(const ModeChoice& mode, const std::function<void()>& onSettled);
  Result<void> prepare(const ModeChoice& mode);
  Result<void> setFormat(const ModeChoice& mode);
  void setRate(const ModeChoice& mode);
  int makeBuffers();
  int mapBuffer(std::uint32_t index);
  void close();
  void setState(State state);

  V4l2System& system_;
  int fd_;
  std::vector<Buffer> buffers_;
  v4l2_pix_format format_{};
  Error error_;

  std::mutex mutex_;
  std::condition_variable changed_;
  State state_ = State::Starting;
  bool shallEnd_ = false;
  std::thread thread_;
};

}  // namespace vistrel::capture
