#include "linux/qt/QtMainLoop.h"

#include <sys/eventfd.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QSocketNotifier>
#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

#include "base/Log.h"
#include "linux/qt/SingleShot.h"

namespace vistrel::qt {

namespace {

class QtTimer final : public backend::Timer {
 public:
  QtTimer(std::chrono::milliseconds delay, std::function<void()> work) : shot_(delay, std::move(work)) {}

 private:
  SingleShot shot_;
};

}  // namespace

QtMainLoop::QtMainLoop() : counter_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE)) {
  if (!counter_)
    fatalError(std::string("the main loop cannot have its event counter: ") + std::strerror(errno));
  notifier_ = std::make_unique<QSocketNotifier>(counter_.get(), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { runNext(); });
}

QtMainLoop::~QtMainLoop() = default;

int QtMainLoop::run() { return isQuitting_ ? 0 : QCoreApplication::exec(); }

void QtMainLoop::quit() {
  isQuitting_ = true;
  QCoreApplication::exit(0);
}

void QtMainLoop::post(std::function<void()> work) {
  {
    const std::lock_guard lock(mutex_);
    queue_.push_back(std::move(work));
  }
  ::eventfd_write(counter_.get(), 1);
}

void QtMainLoop::runNext() {
  eventfd_t one = 0;
  if (::eventfd_read(counter_.get(), &one) != 0) return;
  std::function<void()> work;
  {
    const std::lock_guard lock(mutex_);
    work = std::move(queue_.front());
    queue_.pop_front();
  }
  work();
}

std::unique_ptr<backend::Timer> QtMainLoop::after(std::chrono::milliseconds delay,
                                                  std::function<void()> work) {
  return std::make_unique<QtTimer>(delay, std::move(work));
}

void QtMainLoop::runModal() {
  if (isQuitting_) return;
  QEventLoop loop;
  modalLoops_.push_back(&loop);
  loop.exec();
  std::erase(modalLoops_, &loop);
}

void QtMainLoop::endModal() {
  if (!modalLoops_.empty()) modalLoops_.back()->exit();
}

}  // namespace vistrel::qt
