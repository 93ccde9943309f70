#include "linux/camera/V4l2Question.h"

#include <cerrno>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>

#include "linux/Threads.h"
#include "linux/camera/V4l2Formats.h"

namespace vistrel::camera {
namespace {

struct Question {
  std::mutex mutex;
  std::condition_variable answered;
  bool isAnswered = false;
  std::optional<V4l2Answer> answer;
};

std::optional<V4l2Answer> answerOf(V4l2System& system, const std::string& path, V4l2Asked asked) {
  const int fd = system.open(path);
  if (fd == -EBUSY) return V4l2Answer{true, {}};
  if (fd < 0) return std::nullopt;
  const V4l2Answer answer{asked == V4l2Asked::All && isBusy(system, fd), sourceSizeOf(system, fd)};
  system.close(fd);
  return answer;
}

}  // namespace

std::optional<V4l2Answer> askV4l2(V4l2System& system, const std::string& path, V4l2Asked asked,
                                  V4l2System::Clock::time_point deadline) {
  const auto question = std::make_shared<Question>();
  auto thread = desktop::startThread([question, &system, path, asked] {
    const auto answer = answerOf(system, path, asked);
    const std::lock_guard lock(question->mutex);
    question->answer = answer;
    question->isAnswered = true;
    question->answered.notify_all();
  });
  if (!thread) return std::nullopt;
  std::move(thread).value().detach();
  std::unique_lock lock(question->mutex);
  system.waitUntil(question->answered, lock, deadline, [&] { return question->isAnswered; });
  return question->answer;
}

}  // namespace vistrel::camera
