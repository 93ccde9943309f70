#include "linux/camera/PipeWireLoop.h"

#include <algorithm>
#include <cerrno>

namespace vistrel::camera {

PipeWireLoop::PipeWireLoop(desktop::Reactor& reactor)
    : reactor_(reactor), self_(std::make_shared<PipeWireLoop*>(this)) {
  pw_init(nullptr, nullptr);
  // None where the library's plugins are missing or no descriptor is left.
  loop_ = pw_loop_new(nullptr);
  if (!loop_) return;
  pw_loop_enter(loop_);
  registration_ = reactor.watch(pw_loop_get_fd(loop_), [this] { turn(); });
}

PipeWireLoop::~PipeWireLoop() {
  *self_ = nullptr;
  registration_.reset();
  if (loop_) {
    pw_loop_leave(loop_);
    pw_loop_destroy(loop_);
  }
  pw_deinit();
}

void PipeWireLoop::adoptFrames(pw_context& context) {
  frames_ = FrameLoop::takeOver(context, reactor_, [this] { forEach(&PipeWireClient::deliver); });
}

void PipeWireLoop::add(PipeWireClient& client) { clients_.push_back(&client); }

// A walk may be under way: the place is emptied, not closed up.
void PipeWireLoop::remove(PipeWireClient& client) {
  std::replace(clients_.begin(), clients_.end(), &client, static_cast<PipeWireClient*>(nullptr));
  if (walks_ == 0) std::erase(clients_, nullptr);
}

void PipeWireLoop::forEach(void (PipeWireClient::*method)()) {
  ++walks_;
  for (std::size_t i = 0; i < clients_.size(); ++i)
    if (clients_[i]) (clients_[i]->*method)();
  if (--walks_ == 0) std::erase(clients_, nullptr);
}

bool PipeWireLoop::iterate(int timeoutMs) {
  if (!loop_) return false;
  const int events = pw_loop_iterate(loop_, timeoutMs);
  forEach(&PipeWireClient::afterIteration);
  return events > 0 || events == -EINTR;
}

void PipeWireLoop::turn() {
  iterate(0);
  forEach(&PipeWireClient::deliver);
}

bool PipeWireLoop::waitUntil(const std::function<bool()>& isDone, std::chrono::milliseconds patience) {
  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + patience;
  bool hasMore = iterate(0);
  while (!isDone()) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0 && !(hasMore && patience.count() == 0)) break;
    hasMore = iterate(static_cast<int>(std::max<long>(left.count(), 0)));
  }
  deliverLater();
  return isDone();
}

void PipeWireLoop::tellConnectionLost() { forEach(&PipeWireClient::connectionLost); }

void PipeWireLoop::deliverLater() {
  if (isDeliveryPosted_) return;
  isDeliveryPosted_ = true;
  reactor_.post([self = std::weak_ptr(self_)] {
    const auto loop = self.lock();
    if (loop && *loop) (*loop)->deliver();
  });
}

void PipeWireLoop::deliver() {
  isDeliveryPosted_ = false;
  forEach(&PipeWireClient::deliver);
}

}  // namespace vistrel::camera
