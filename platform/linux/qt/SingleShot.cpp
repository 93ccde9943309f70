#include "linux/qt/SingleShot.h"

#include <QTimer>
#include <utility>

namespace vistrel::qt {

SingleShot::SingleShot(std::chrono::milliseconds delay, std::function<void()> work) : timer_(new QTimer) {
  timer_->setSingleShot(true);
  timer_->setTimerType(Qt::PreciseTimer);
  QObject::connect(timer_, &QTimer::timeout, std::move(work));
  timer_->start(delay);
}

// It may be the timer's own signal that ends it.
SingleShot::~SingleShot() {
  timer_->disconnect();
  timer_->stop();
  timer_->deleteLater();
}

}  // namespace vistrel::qt
