#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace vistrel::backend {

/// A timer that was asked for; destroying it calls it off.
class Timer {
 public:
  virtual ~Timer() = default;
};

/// The loop that delivers everything. Main thread only, but for `post`.
class MainLoop {
 public:
  virtual ~MainLoop() = default;
  /// Runs until `quit`; returns the exit status.
  virtual int run() = 0;
  virtual void quit() = 0;
  /// Calls `work` in a later turn. Safe from any thread.
  virtual void post(std::function<void()> work) = 0;
  /// Calls `work` once after `delay`, unless the timer dies before.
  [[nodiscard]] virtual std::unique_ptr<Timer> after(std::chrono::milliseconds delay,
                                                     std::function<void()> work) = 0;
  /// Delivers everything until the matching `endModal`. May nest: `endModal` ends the innermost one.
  virtual void runModal() = 0;
  virtual void endModal() = 0;
};

}  // namespace vistrel::backend
