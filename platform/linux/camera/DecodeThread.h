#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <thread>

#include "base/Result.h"
#include "linux/Reactor.h"
#include "linux/camera/FrameDecoder.h"

namespace vistrel::camera {

/// A thread that decodes one JPEG at a time. All methods belong to the main thread. Destroying it calls the
/// frame in flight off and waits 10 ms at most: a thread that is late owns all that it still touches.
class DecodeThread {
 public:
  enum class Outcome { Decoded, Damaged };

  /// `handler` is called from the main loop when a frame is done. The error: there is no thread to be had.
  static Result<std::unique_ptr<DecodeThread>> start(desktop::Reactor& reactor,
                                                     std::function<void(Outcome)> handler);
  ~DecodeThread();
  DecodeThread(const DecodeThread&) = delete;
  DecodeThread& operator=(const DecodeThread&) = delete;

  /// True when a frame can be handed over.
  [[nodiscard]] bool isIdle() const { return isIdle_; }
  /// Copies `jpeg` and starts decoding it for a glass of that size. Only while idle.
  void decode(std::span<const std::uint8_t> jpeg, PixelSize glass);
  /// Tells the thread to end, without waiting for it. Nothing is decoded afterwards.
  void callOff();
  /// The last frame that was decoded; valid until the next outcome.
  [[nodiscard]] const Picture& picture() const { return front_.picture; }

 private:
  struct Shared;

  DecodeThread(desktop::Reactor& reactor, std::function<void(Outcome)> handler);
  void takeOutcome();

  std::function<void(Outcome)> handler_;
  std::shared_ptr<Shared> shared_;
  std::unique_ptr<desktop::Registration> registration_;
  bool isIdle_ = true;
  OwnedPicture front_;
  std::thread thread_;
};

}  // namespace vistrel::camera
