#include "linux/camera/DecodeThread.h"

#include <sys/eventfd.h>

#include <utility>

namespace vistrel::capture {

DecodeThread::DecodeThread(Reactor& reactor, std::function<void(Outcome)> handler)
    : handler_(std::move(handler)), wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  registration_ = reactor.watch(wakeUp_.get(), [this] { takeOutcome(); });
  thread_ = std::thread([this] { run(); });
}

DecodeThread::~DecodeThread() {
  registration_.reset();
  {
    const std::lock_guard lock(mutex_);
    slot_ = Slot::Quit;
  }
  changed_.notify_one();
  thread_.join();
}

void DecodeThread::decode(std::span<const std::uint8_t> jpeg, PixelSize glass) {
  isIdle_ = false;
  jpeg_.assign(jpeg.begin(), jpeg.end());
  glass_ = glass;
  {
    const std::lock_guard lock(mutex_);
    slot_ = Slot::Waiting;
  }
  changed_.notify_one();
}

void DecodeThread::takeOutcome() {
  std::uint64_t count = 0;
  (void)!::read(wakeUp_.get(), &count, sizeof count);
  Outcome outcome = Outcome::Damaged;
  {
    const std::lock_guard lock(mutex_);
    if (slot_ != Slot::Decoded && slot_ != Slot::Damaged) return;
    outcome = slot_ == Slot::Decoded ? Outcome::Decoded : Outcome::Damaged;
    slot_ = Slot::Empty;
  }
  if (outcome == Outcome::Decoded) std::swap(front_, back_);
  isIdle_ = true;
  handler_(outcome);
}

void DecodeThread::run() {
  JpegDecoder decoder;
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return slot_ == Slot::Waiting || slot_ == Slot::Quit; });
    if (slot_ == Slot::Quit) return;
    lock.unlock();
    const bool isWhole = decoder.decode(jpeg_, glass_, back_);
    lock.lock();
    if (slot_ == Slot::Quit) return;
    slot_ = isWhole ? Slot::Decoded : Slot::Damaged;
    const std::uint64_t one = 1;
    (void)!::write(wakeUp_.get(), &one, sizeof one);
  }
}

}  // namespace vistrel::capture
