#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace vistrel::desktop {

/// A registration with a `Reactor`; destroying it ends it. A handler may destroy its own registration.
class Registration {
 public:
  virtual ~Registration() = default;
};

/// The main loop as the parts of the backend that know no toolkit see it. Main thread only, but for `post`.
class Reactor {
 public:
  virtual ~Reactor() = default;
  /// Calls `handler` from the main loop whenever `fd` is readable.
  [[nodiscard]] virtual std::unique_ptr<Registration> watch(int fd, std::function<void()> handler) = 0;
  /// Calls `handler` once, after `delay`.
  [[nodiscard]] virtual std::unique_ptr<Registration> after(std::chrono::milliseconds delay,
                                                            std::function<void()> handler) = 0;
  /// Calls `work` in a later turn of the main loop. Safe from any thread.
  virtual void post(std::function<void()> work) = 0;
};

}  // namespace vistrel::desktop
