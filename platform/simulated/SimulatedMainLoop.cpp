#include "simulated/SimulatedMainLoop.h"

#include <algorithm>
#include <utility>

#include "base/Log.h"

namespace vistrel::simulated {

class SimulatedMainLoop::SimulatedTimer final : public backend::Timer {
 public:
  SimulatedTimer(SimulatedMainLoop& loop, std::function<void()> work) : loop_(loop), work_(std::move(work)) {}
  SimulatedTimer(const SimulatedTimer&) = delete;
  SimulatedTimer& operator=(const SimulatedTimer&) = delete;
  ~SimulatedTimer() override {
    std::erase_if(loop_.timers_, [this](const auto& entry) { return entry.second == this; });
  }
  // The work may end the timer that holds it.
  void fire() {
    const auto work = work_;
    work();
  }

 private:
  SimulatedMainLoop& loop_;
  std::function<void()> work_;
};

int SimulatedMainLoop::run() {
  while (!hasQuit_ && runOne()) {
  }
  return 0;
}

bool SimulatedMainLoop::runOne() {
  if (queue_.empty()) return false;
  const auto work = std::move(queue_.front());
  queue_.pop_front();
  work();
  return true;
}

void SimulatedMainLoop::settle() {
  while (runOne()) {
  }
}

void SimulatedMainLoop::dropQueued() {
  // What goes with the work may queue more.
  while (!queue_.empty()) std::exchange(queue_, {}).clear();
}

std::unique_ptr<backend::Timer> SimulatedMainLoop::after(std::chrono::milliseconds delay,
                                                         std::function<void()> work) {
  auto timer = std::make_unique<SimulatedTimer>(*this, std::move(work));
  timers_.emplace(now_ + delay, timer.get());
  return timer;
}

void SimulatedMainLoop::advance(std::chrono::milliseconds time) {
  const auto end = now_ + time;
  settle();
  while (!timers_.empty() && timers_.begin()->first <= end) {
    now_ = std::max(now_, timers_.begin()->first);
    auto* timer = timers_.begin()->second;
    timers_.erase(timers_.begin());
    timer->fire();
    settle();
  }
  now_ = end;
}

void SimulatedMainLoop::runModal() {
  const int endedBefore = endedModals_;
  while (endedModals_ == endedBefore) {
    if (!modalScript_.empty()) {
      const auto answer = std::move(modalScript_.front());
      modalScript_.pop_front();
      answer();
    } else if (!runOne()) {
      fatalError("nothing ends this modal");
    }
  }
  --endedModals_;
}

}  // namespace vistrel::simulated
