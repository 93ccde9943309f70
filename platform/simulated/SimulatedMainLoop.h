#pragma once

#include <deque>
#include <map>

#include "backend/MainLoop.h"

namespace vistrel::simulated {

/// A main loop with a clock of its own: nothing happens until a test turns it.
class SimulatedMainLoop final : public backend::MainLoop {
 public:
  int run() override;
  void quit() override { hasQuit_ = true; }
  void post(std::function<void()> work) override { queue_.push_back(std::move(work)); }
  std::unique_ptr<backend::Timer> after(std::chrono::milliseconds delay, std::function<void()> work) override;
  /// Turns the loop until the innermost modal ends. Stops the program with "nothing ends this modal" when
  /// nothing is left that could end it.
  void runModal() override;
  void endModal() override { ++endedModals_; }

  /// Delivers what is queued, and what that queues.
  void settle();
  /// Moves the clock on, firing the timers on the way.
  void advance(std::chrono::milliseconds time);
  /// Moves the clock on while nothing runs: the timers are late.
  void standStill(std::chrono::milliseconds time) { now_ += time; }
  /// Does `work` when the next modal loop waits: the user's answer.
  void onceModal(std::function<void()> work) { modalScript_.push_back(std::move(work)); }
  [[nodiscard]] std::chrono::milliseconds now() const { return now_; }
  /// Drops what is queued: nobody turns the loop again, and what the work holds must go before the rest.
  void dropQueued();
  [[nodiscard]] bool hasQuit() const { return hasQuit_; }
  [[nodiscard]] std::size_t timerCount() const { return timers_.size(); }

 private:
  class SimulatedTimer;
  bool runOne();

  std::deque<std::function<void()>> queue_;
  std::deque<std::function<void()>> modalScript_;
  std::multimap<std::chrono::milliseconds, SimulatedTimer*> timers_;
  std::chrono::milliseconds now_{0};
  int endedModals_ = 0;
  bool hasQuit_ = false;
};

}  // namespace vistrel::simulated
