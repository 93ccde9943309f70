#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

#include "linux/FileDescriptor.h"
#include "linux/Reactor.h"

namespace vistrel::desktop {

/// A main loop of poll(2), for programs without a toolkit.
class PollReactor final : public Reactor {
 public:
  PollReactor();

  [[nodiscard]] std::unique_ptr<Registration> watch(int fd, std::function<void()> handler) override;
  [[nodiscard]] std::unique_ptr<Registration> after(std::chrono::milliseconds delay,
                                                    std::function<void()> handler) override;
  void post(std::function<void()> work) override;

  /// How many timers are still to come.
  [[nodiscard]] std::size_t timersAhead() const;
  /// Runs until `isDone`, or gives up after `limit` and answers false.
  bool runUntil(const std::function<bool()>& isDone,
                std::chrono::milliseconds limit = std::chrono::seconds(10));
  /// Runs one turn, waiting at most `longest` for something to happen.
  void turn(std::chrono::milliseconds longest);

 private:
  using Clock = std::chrono::steady_clock;
  struct Entry {
    int fd = -1;
    Clock::time_point due = Clock::time_point::max();
    std::function<void()> handler;
  };
  class Token;
  using Handle = std::shared_ptr<Entry>;

  std::unique_ptr<Registration> add(Entry entry);
  void runPosted();

  std::shared_ptr<std::list<Handle>> entries_ = std::make_shared<std::list<Handle>>();
  FileDescriptor wakeUp_;
  std::mutex mutex_;
  std::vector<std::function<void()>> posted_;
};

}  // namespace vistrel::desktop
