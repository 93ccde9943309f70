#pragma once

#include <chrono>
#include <functional>

class QTimer;

namespace vistrel::qt {

/// Calls something once after a delay, unless it dies before. What is called may destroy it.
class SingleShot {
 public:
  SingleShot(std::chrono::milliseconds delay, std::function<void()> work);
  SingleShot(const SingleShot&) = delete;
  SingleShot& operator=(const SingleShot&) = delete;
  ~SingleShot();

 private:
  QTimer* timer_;
};

}  // namespace vistrel::qt
