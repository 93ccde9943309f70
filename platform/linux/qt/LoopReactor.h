#pragma once

#include "linux/Reactor.h"

namespace vistrel::backend {
class MainLoop;
}

namespace vistrel::qt {

/// Qt's event loop for the parts of the backend that know no toolkit.
class LoopReactor final : public desktop::Reactor {
 public:
  explicit LoopReactor(backend::MainLoop& loop) : loop_(loop) {}

  [[nodiscard]] std::unique_ptr<desktop::Registration> watch(int fd, std::function<void()> handler) override;
  [[nodiscard]] std::unique_ptr<desktop::Registration> after(std::chrono::milliseconds delay,
                                                             std::function<void()> handler) override;
  void post(std::function<void()> work) override;

 private:
  backend::MainLoop& loop_;
};

}  // namespace vistrel::qt
