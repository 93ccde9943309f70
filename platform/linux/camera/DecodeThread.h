#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

#include "linux/camera/FileDescriptor.h"
#include "linux/camera/JpegDecoder.h"
#include "linux/camera/Reactor.h"

namespace vistrel::capture {

/// A thread that decodes one JPEG at a time. All methods belong to the main thread; destroying it waits for
/// the frame in flight.
class DecodeThread {
 public:
  enum class Outcome { Decoded, Damaged };

  /// `handler` is called from the main loop when a frame is done.
  DecodeThread(Reactor& reactor, std::function<void(Outcome)> handler);
  ~DecodeThread();
  DecodeThread(const DecodeThread&) = delete;
  DecodeThread& operator=(const DecodeThread&) = delete;

  /// True when a frame can be handed over.
  [[nodiscard]] bool isIdle() const { return isIdle_; }
  /// Copies `jpeg` and starts decoding it for a glass of that size. Only while idle.
  void decode(std::span<const std::uint8_t> jpeg, PixelSize glass);
  /// The last frame that was decoded; valid until the next outcome.
  [[nodiscard]] const Picture& picture() const { return front_.picture; }

 private:
  enum class Slot { Empty, Waiting, Decoded, Damaged, Quit };

  void run();
  void takeOutcome();

  std::function<void(Outcome)> handler_;
  FileDescriptor wakeUp_;
  std::unique_ptr<Registration> registration_;
  bool isIdle_ = true;
  OwnedPicture front_;

  // Written by the side whose turn it is: main while the slot is empty, the thread while a frame waits.
  std::vector<std::uint8_t> jpeg_;
  PixelSize glass_;
  OwnedPicture back_;

  std::mutex mutex_;
  std::condition_variable changed_;
  Slot slot_ = Slot::Empty;
  std::thread thread_;
};

}  // namespace vistrel::capture
