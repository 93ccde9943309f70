#pragma once

#include <pipewire/pipewire.h>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "linux/Reactor.h"
#include "linux/camera/FrameLoop.h"

namespace vistrel::camera {

/// Something that lives on the loop. The library's callbacks only record; these are called outside of them.
class PipeWireClient {
 public:
  virtual ~PipeWireClient() = default;
  /// After every iteration: may call the library, must not call anybody outside.
  virtual void afterIteration() {}
  /// From the main loop only: tells the outside what was recorded.
  virtual void deliver() {}
  /// The connection is about to be taken down; everything on it must go.
  virtual void connectionLost() {}
};

/// PipeWire's loop as a part of the main loop.
class PipeWireLoop {
 public:
  explicit PipeWireLoop(desktop::Reactor& reactor);
  ~PipeWireLoop();
  PipeWireLoop(const PipeWireLoop&) = delete;
  PipeWireLoop& operator=(const PipeWireLoop&) = delete;

  /// Null where the library could make none: then there are no cameras through PipeWire.
  [[nodiscard]] pw_loop* get() const { return loop_; }
  /// Passes the frames of the context's streams on from the main loop too, where the library allows it.
  void adoptFrames(pw_context& context);
  /// Before the context goes.
  void releaseFrames() { frames_.reset(); }
  [[nodiscard]] bool carriesFrames() const { return frames_ != nullptr; }
  void add(PipeWireClient& client);
  void remove(PipeWireClient& client);
  /// Runs this loop alone until `isDone` or until patience ends. What happens meanwhile is delivered later,
  /// from the main loop.
  bool waitUntil(const std::function<bool()>& isDone, std::chrono::milliseconds patience);
  void tellConnectionLost();
  /// Has `deliver` called in a later turn of the main loop.
  void deliverLater();

 private:
  bool iterate(int timeoutMs);
  void turn();
  void deliver();
  void forEach(void (PipeWireClient::*method)());

  desktop::Reactor& reactor_;
  pw_loop* loop_ = nullptr;
  std::vector<PipeWireClient*> clients_;
  int walks_ = 0;
  std::shared_ptr<PipeWireLoop*> self_;
  bool isDeliveryPosted_ = false;
  std::unique_ptr<desktop::Registration> registration_;
  std::unique_ptr<FrameLoop> frames_;
};

}  // namespace vistrel::camera
