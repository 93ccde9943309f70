#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace vistrel::desktop {

/// Says once on standard error whom the program waits for when that takes longer than five seconds. What
/// blocks meanwhile is a library, so the clock is on a thread of its own, which ends with the watch.
class AnswerWatch {
 public:
  /// `whom`: as in "the X server".
  explicit AnswerWatch(std::string whom);
  ~AnswerWatch();
  AnswerWatch(const AnswerWatch&) = delete;
  AnswerWatch& operator=(const AnswerWatch&) = delete;

 private:
  void run();

  std::string whom_;
  std::mutex mutex_;
  std::condition_variable answered_;
  bool isAnswered_ = false;
  std::thread thread_;
};

}  // namespace vistrel::desktop
