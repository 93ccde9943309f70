#include "linux/qt/LoopReactor.h"

#include <QSocketNotifier>
#include <utility>

#include "backend/MainLoop.h"
#include "linux/qt/SingleShot.h"

namespace vistrel::qt {

namespace {

class Watch final : public desktop::Registration {
 public:
  Watch(int fd, std::function<void()> handler) : notifier_(new QSocketNotifier(fd, QSocketNotifier::Read)) {
    QObject::connect(notifier_, &QSocketNotifier::activated, std::move(handler));
  }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;
  // It may be the notifier's own signal that ends it.
  ~Watch() override {
    notifier_->disconnect();
    notifier_->setEnabled(false);
    notifier_->deleteLater();
  }

 private:
  QSocketNotifier* notifier_;
};

class Delay final : public desktop::Registration {
 public:
  Delay(std::chrono::milliseconds delay, std::function<void()> handler) : shot_(delay, std::move(handler)) {}

 private:
  SingleShot shot_;
};

}  // namespace

std::unique_ptr<desktop::Registration> LoopReactor::watch(int fd, std::function<void()> handler) {
  return std::make_unique<Watch>(fd, std::move(handler));
}

std::unique_ptr<desktop::Registration> LoopReactor::after(std::chrono::milliseconds delay,
                                                          std::function<void()> handler) {
  return std::make_unique<Delay>(delay, std::move(handler));
}

void LoopReactor::post(std::function<void()> work) { loop_.post(std::move(work)); }

}  // namespace vistrel::qt
