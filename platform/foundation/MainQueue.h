#pragma once

#include <functional>
#include <string>

namespace vistrel {

/// The main thread's queue of work.
class MainQueue {
 public:
  /// Runs `work` in a later turn of the main loop. Safe from any thread.
  static void async(std::function<void()> work);
};

/// The label of the queue on which the calling code runs; the main thread's is "com.apple.main-thread".
class DispatchQueue {
 public:
  [[nodiscard]] static std::string currentLabel();
  /// Runs `work` on the calling thread as a queue of that label would.
  static void performAs(const std::string& label, const std::function<void()>& work);
};

}  // namespace vistrel
