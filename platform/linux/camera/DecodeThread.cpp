#include "linux/camera/DecodeThread.h"

#include <sys/eventfd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

#include "linux/FileDescriptor.h"
#include "linux/Threads.h"

namespace vistrel::camera {
namespace {

constexpr std::chrono::milliseconds kEndingPatience{10};

}  // namespace

/// What both threads touch; it lives as long as the longer of them.
struct DecodeThread::Shared {
  enum class Slot { Empty, Waiting, Decoded, Damaged };

  void run();
  void work(FrameDecoder& decoder);

  desktop::FileDescriptor wakeUp{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
  std::atomic<bool> shallEnd = false;

  // Written by the side whose turn it is: main while the slot is empty, the thread while a frame waits.
  std::vector<std::uint8_t> jpeg;
  PixelSize glass;
  OwnedPicture back;

  std::mutex mutex;
  std::condition_variable changed;
  Slot slot = Slot::Empty;
  bool hasEnded = false;
};

void DecodeThread::Shared::run() {
  FrameDecoder decoder(shallEnd);
  work(decoder);
  const std::lock_guard lock(mutex);
  hasEnded = true;
  changed.notify_all();
}

void DecodeThread::Shared::work(FrameDecoder& decoder) {
  std::unique_lock lock(mutex);
  while (true) {
    changed.wait(lock, [this] { return slot == Slot::Waiting || shallEnd; });
    if (shallEnd) return;
    lock.unlock();
    const bool isWhole = decoder.decode(jpeg, glass, back);
    lock.lock();
    if (shallEnd) return;
    slot = isWhole ? Slot::Decoded : Slot::Damaged;
    const std::uint64_t one = 1;
    (void)!::write(wakeUp.get(), &one, sizeof one);
  }
}

Result<std::unique_ptr<DecodeThread>> DecodeThread::start(desktop::Reactor& reactor,
                                                          std::function<void(Outcome)> handler) {
  std::unique_ptr<DecodeThread> decoder(new DecodeThread(reactor, std::move(handler)));
  auto thread = desktop::startThread([shared = decoder->shared_] { shared->run(); });
  if (!thread) return thread.error();
  decoder->thread_ = std::move(thread).value();
  return decoder;
}

DecodeThread::DecodeThread(desktop::Reactor& reactor, std::function<void(Outcome)> handler)
    : handler_(std::move(handler)), shared_(std::make_shared<Shared>()) {
  registration_ = reactor.watch(shared_->wakeUp.get(), [this] { takeOutcome(); });
}

DecodeThread::~DecodeThread() {
  callOff();
  if (!thread_.joinable()) return;
  bool hasEnded = false;
  {
    std::unique_lock lock(shared_->mutex);
    hasEnded = shared_->changed.wait_for(lock, kEndingPatience, [this] { return shared_->hasEnded; });
  }
  if (hasEnded)
    thread_.join();
  else
    thread_.detach();
}

void DecodeThread::callOff() {
  registration_.reset();
  const std::lock_guard lock(shared_->mutex);
  shared_->shallEnd = true;
  shared_->changed.notify_all();
}

void DecodeThread::decode(std::span<const std::uint8_t> jpeg, PixelSize glass) {
  isIdle_ = false;
  shared_->jpeg.assign(jpeg.begin(), jpeg.end());
  shared_->glass = glass;
  const std::lock_guard lock(shared_->mutex);
  shared_->slot = Shared::Slot::Waiting;
  shared_->changed.notify_all();
}

void DecodeThread::takeOutcome() {
  std::uint64_t count = 0;
  (void)!::read(shared_->wakeUp.get(), &count, sizeof count);
  Outcome outcome = Outcome::Damaged;
  {
    const std::lock_guard lock(shared_->mutex);
    const auto slot = shared_->slot;
    if (slot != Shared::Slot::Decoded && slot != Shared::Slot::Damaged) return;
    outcome = slot == Shared::Slot::Decoded ? Outcome::Decoded : Outcome::Damaged;
    shared_->slot = Shared::Slot::Empty;
  }
  if (outcome == Outcome::Decoded) std::swap(front_, shared_->back);
  isIdle_ = true;
  handler_(outcome);
}

}  // namespace vistrel::camera
