#include "PollReactor.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <utility>

namespace vistrel::desktop {

class PollReactor::Token final : public Registration {
 public:
  Token(std::shared_ptr<std::list<Handle>> entries, Handle entry)
      : entries_(std::move(entries)), entry_(std::move(entry)) {}
  ~Token() override {
    entry_->handler = nullptr;
    entries_->remove(entry_);
  }

 private:
  std::shared_ptr<std::list<Handle>> entries_;
  Handle entry_;
};

PollReactor::PollReactor() : wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

std::unique_ptr<Registration> PollReactor::add(Entry entry) {
  entries_->push_back(std::make_shared<Entry>(std::move(entry)));
  return std::make_unique<Token>(entries_, entries_->back());
}

std::unique_ptr<Registration> PollReactor::watch(int fd, std::function<void()> handler) {
  return add({fd, Clock::time_point::max(), std::move(handler)});
}

std::unique_ptr<Registration> PollReactor::after(std::chrono::milliseconds delay,
                                                 std::function<void()> handler) {
  return add({-1, Clock::now() + delay, std::move(handler)});
}

std::size_t PollReactor::timersAhead() const {
  const auto isAhead = [](const Handle& entry) { return entry->due != Clock::time_point::max(); };
  return static_cast<std::size_t>(std::count_if(entries_->begin(), entries_->end(), isAhead));
}

void PollReactor::post(std::function<void()> work) {
  const std::lock_guard lock(mutex_);
  posted_.push_back(std::move(work));
  const std::uint64_t one = 1;
  (void)!::write(wakeUp_.get(), &one, sizeof one);
}

void PollReactor::runPosted() {
  std::uint64_t count = 0;
  (void)!::read(wakeUp_.get(), &count, sizeof count);
  std::vector<std::function<void()>> work;
  {
    const std::lock_guard lock(mutex_);
    work.swap(posted_);
  }
  for (auto& one : work) one();
}

void PollReactor::turn(std::chrono::milliseconds longest) {
  const std::vector<Handle> entries(entries_->begin(), entries_->end());
  std::vector<pollfd> fds{{wakeUp_.get(), POLLIN, 0}};
  auto until = Clock::now() + longest;
  for (const auto& entry : entries) {
    fds.push_back({entry->fd, POLLIN, 0});
    until = std::min(until, entry->due);
  }
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
  ::poll(fds.data(), fds.size(), static_cast<int>(std::max<long>(left.count(), 0)));
  if (fds[0].revents) runPosted();
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const bool isDue = fds[i + 1].revents != 0 || Clock::now() >= entries[i]->due;
    if (!isDue || !entries[i]->handler) continue;
    if (entries[i]->fd < 0) entries[i]->due = Clock::time_point::max();
    const auto handler = entries[i]->handler;
    handler();
  }
}

bool PollReactor::runUntil(const std::function<bool()>& isDone, std::chrono::milliseconds limit) {
  const auto deadline = Clock::now() + limit;
  while (!isDone()) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) return false;
    turn(left);
  }
  return true;
}

}  // namespace vistrel::desktop
