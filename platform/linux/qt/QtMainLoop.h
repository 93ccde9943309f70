#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "backend/MainLoop.h"
#include "linux/FileDescriptor.h"

class QEventLoop;
class QSocketNotifier;

namespace vistrel::qt {

/// Qt's event loop as the program's main loop. Needs the application object.
class QtMainLoop final : public backend::MainLoop {
 public:
  QtMainLoop();
  ~QtMainLoop() override;

  int run() override;
  void quit() override;
  void post(std::function<void()> work) override;
  [[nodiscard]] std::unique_ptr<backend::Timer> after(std::chrono::milliseconds delay,
                                                      std::function<void()> work) override;
  void runModal() override;
  void endModal() override;

 private:
  void runNext();

  std::mutex mutex_;
  std::deque<std::function<void()>> queue_;
  /// Counts what is queued, so that a nested loop is woken for what an outer one has not delivered yet.
  desktop::FileDescriptor counter_;
  std::unique_ptr<QSocketNotifier> notifier_;
  std::vector<QEventLoop*> modalLoops_;
  bool isQuitting_ = false;
};

}  // namespace vistrel::qt
