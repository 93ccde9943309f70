#pragma once

#include <QTimer>
#include <chrono>
#include <functional>
#include <utility>

namespace vistrel::qt {

/// Calls something once after a delay, unless it dies before. What is called may destroy it.
class SingleShot {
 public:
  SingleShot(std::chrono::milliseconds delay, std::function<void()> work) : timer_(new QTimer) {
    timer_->setSingleShot(true);
    timer_->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer_, &QTimer::timeout, std::move(work));
    timer_->start(delay);
  }
  SingleShot(const SingleShot&) = delete;
  SingleShot& operator=(const SingleShot&) = delete;
  // It may be the timer's own signal that ends it.
  ~SingleShot() {
    timer_->disconnect();
    timer_->stop();
    timer_->deleteLater();
  }

 private:
  QTimer* timer_;
};

}  // namespace vistrel::qt
