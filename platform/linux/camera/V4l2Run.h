#pragma once

#include <linux/videodev2.h>

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "base/Result.h"
#include "linux/camera/V4l2Seat.h"
#include "linux/camera/V4l2System.h"
#include "linux/camera/VideoMode.h"

namespace vistrel::camera {

/// Where a device is opened, and the seat that its runs take one after the other.
struct V4l2Node {
  std::string path;
  std::shared_ptr<V4l2Seat> seat = std::make_shared<V4l2Seat>();
};

/// One run of a device, from opening to closing it. A driver may block for seconds in either and in starting,
/// so all three happen on a thread of the run's own, which sleeps in between; nobody waits for it without
/// bounds.
class V4l2Run : public std::enable_shared_from_this<V4l2Run> {
 public:
  enum class State { Opening, Opened, Starting, Running, Failed, Ended };

  V4l2Run(V4l2System& system, V4l2Node node) : system_(system), node_(std::move(node)) {}
  V4l2Run(const V4l2Run&) = delete;
  V4l2Run& operator=(const V4l2Run&) = delete;

  /// Opens the device, once the run before it has closed it, and reads its modes.
  void open();
  /// Starts, as soon as it is opened; `onSettled` is called on the run's thread once it runs or has failed,
  /// but not after `end`.
  void begin(const ModeChoice& mode, std::function<void()> onSettled);
  /// Waits for the opening or the start until `deadline` and tells how it stands.
  State await(V4l2System::Clock::time_point deadline);
  /// Stops and closes the device, waiting for it until `deadline`.
  void end(V4l2System::Clock::time_point deadline);

  /// What the device offers; once opened.
  [[nodiscard]] const std::vector<VideoMode>& modes() const { return modes_; }
  /// Why the opening or the start failed.
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
  Result<void> giveBack(std::uint32_t index);

 private:
  struct Buffer {
    const void* memory = nullptr;
    std::size_t length = 0;
  };

  void run();
  [[nodiscard]] bool shallEnd();
  void openUntilEnd();
  Result<void> openDevice();
  void settle(const Result<void>& result, State success);
  Result<void> prepare(const ModeChoice& mode);
  Result<void> setFormat(const ModeChoice& mode);
  void setRate(const ModeChoice& mode);
  int makeBuffers();
  int mapBuffer(std::uint32_t index);
  void close();

  V4l2System& system_;
  V4l2Node node_;
  int fd_ = -1;
  std::vector<VideoMode> modes_;
  std::vector<Buffer> buffers_;
  v4l2_pix_format format_{};
  Error error_;

  std::mutex mutex_;
  std::condition_variable changed_;
  State state_ = State::Opening;
  std::optional<ModeChoice> mode_;
  std::function<void()> onSettled_;
  bool shallEnd_ = false;
  std::thread thread_;
};

}  // namespace vistrel::camera
