#pragma once

#include <pipewire/pipewire.h>

#include <functional>
#include <memory>

#include "linux/Reactor.h"

namespace vistrel::camera {

/// What the library does with frames on a thread of its own, done inside the main loop instead: a frame that
/// goes from thread to thread wakes both.
class FrameLoop {
 public:
  /// Takes the work over from the context's thread, which ends. `afterTurn` is called from the main loop when
  /// frames may have come. Null where the library does not let go of its threads. Must die before the
  /// context.
  [[nodiscard]] static std::unique_ptr<FrameLoop> takeOver(pw_context& context, desktop::Reactor& reactor,
                                                           std::function<void()> afterTurn);
  FrameLoop(const FrameLoop&) = delete;
  FrameLoop& operator=(const FrameLoop&) = delete;
  ~FrameLoop();

 private:
  FrameLoop(pw_loop* loop, desktop::Reactor& reactor, std::function<void()> afterTurn);
  void turn();

  pw_loop* loop_;
  std::function<void()> afterTurn_;
  std::unique_ptr<desktop::Registration> registration_;
};

}  // namespace vistrel::camera
