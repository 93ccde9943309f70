#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <utility>

#include "stage/camera/PictureSource.h"
#include "stage/guest/camera/Descriptors.h"

namespace vistrel::stage {

/// What is wrong with the frames. NoEnd: the JPEG lacks its end marker. Error: the payload carries the error
/// bit.
enum class StreamFault { None, Frozen, Truncated, NoEnd, Garbage, Error };

/// The bulk stream: cuts each frame into the transfers that wait for it, one payload a frame.
class Stream {
 public:
  using Clock = std::chrono::steady_clock;

  Stream(UsbIp& usb, const Options& options) : usb_(usb), options_(options) {}

  void setFault(StreamFault fault) {
    fault_ = fault;
    faultyFrames_ = 0;
  }
  /// Frames that were sent with the present fault.
  [[nodiscard]] int faultyFrames() const { return faultyFrames_; }
  void enqueue(std::uint32_t sequence, std::uint32_t length);
  /// False: no such transfer waits.
  bool giveUp(std::uint32_t sequence);
  void restart();
  /// Begins the frame that is due, sends what can be sent, and tells when the next one is due.
  Clock::time_point advance(const Mode& mode, std::uint32_t interval);

 private:
  struct Transfer {
    std::uint32_t sequence;
    std::uint32_t length;
  };
  void begin(const Mode& mode);
  void send();
  PictureSource& source(const Mode& mode);

  UsbIp& usb_;
  const Options& options_;
  std::deque<Transfer> waiting_;
  std::map<std::pair<int, int>, std::unique_ptr<PictureSource>> sources_;
  Bytes payload_;  // the frame under way with its header, empty between frames
  std::size_t sent_ = 0;
  Clock::time_point due_;
  StreamFault fault_ = StreamFault::None;
  int faultyFrames_ = 0;
  std::uint32_t counter_ = 0;
};

}  // namespace vistrel::stage
