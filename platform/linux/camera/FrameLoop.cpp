#include "linux/camera/FrameLoop.h"

#include <cstdio>
#include <utility>

namespace vistrel::camera {
namespace {

// From this version on it starts and ends several threads by itself, as streams need them.
constexpr std::pair kManagesThreads{1, 2};

bool letsGoOfItsThread() {
  std::pair version{0, 0};
  const int parts = std::sscanf(pw_get_library_version(), "%d.%d", &version.first, &version.second);
  return parts == 2 && version < kManagesThreads;
}

}  // namespace

std::unique_ptr<FrameLoop> FrameLoop::takeOver(pw_context& context, desktop::Reactor& reactor,
                                               std::function<void()> afterTurn) {
  auto* frames = letsGoOfItsThread() ? pw_context_get_data_loop(&context) : nullptr;
  if (!frames || pw_data_loop_stop(frames) < 0) return nullptr;
  return std::unique_ptr<FrameLoop>(
      new FrameLoop(pw_data_loop_get_loop(frames), reactor, std::move(afterTurn)));
}

FrameLoop::FrameLoop(pw_loop* loop, desktop::Reactor& reactor, std::function<void()> afterTurn)
    : loop_(loop), afterTurn_(std::move(afterTurn)) {
  pw_loop_enter(loop_);
  registration_ = reactor.watch(pw_loop_get_fd(loop_), [this] { turn(); });
}

FrameLoop::~FrameLoop() {
  registration_.reset();
  pw_loop_leave(loop_);
}

// What is called afterwards may be the end of this loop.
void FrameLoop::turn() {
  pw_loop_iterate(loop_, 0);
  const auto told = afterTurn_;
  told();
}

}  // namespace vistrel::camera
