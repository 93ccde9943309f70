#include "linux/AnswerWatch.h"

#include <chrono>
#include <utility>

#include "base/Log.h"
#include "linux/Threads.h"

namespace vistrel::desktop {

namespace {

constexpr std::chrono::seconds kPatience(5);

}  // namespace

AnswerWatch::AnswerWatch(std::string whom) : whom_(std::move(whom)) {
  auto thread = startThread([this] { run(); });
  if (thread) thread_ = std::move(thread).value();
}

AnswerWatch::~AnswerWatch() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    isAnswered_ = true;
    answered_.notify_all();
  }
  thread_.join();
}

void AnswerWatch::run() {
  std::unique_lock lock(mutex_);
  if (answered_.wait_for(lock, kPatience, [this] { return isAnswered_; })) return;
  Log::warning("vistrel: " + whom_ +
               " does not answer, and without an answer nothing can begin: restart it, or log in again");
}

}  // namespace vistrel::desktop
