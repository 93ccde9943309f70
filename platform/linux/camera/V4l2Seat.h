#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>

namespace vistrel::camera {

/// Lets the runs of one device open it one after the other: our own run that is still closing would keep the
/// device busy for the next one. May be used from several threads at once.
class V4l2Seat {
 public:
  /// Waits until nobody has the seat, and takes it. False: `isCalledOff` came true meanwhile.
  bool take(const std::function<bool()>& isCalledOff) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return !isTaken_ || isCalledOff(); });
    if (isCalledOff()) return false;
    isTaken_ = true;
    return true;
  }
  void leave() {
    const std::lock_guard lock(mutex_);
    isTaken_ = false;
    changed_.notify_all();
  }
  /// Has those who wait ask anew whether they are called off.
  void wake() {
    const std::lock_guard lock(mutex_);
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool isTaken_ = false;
};

}  // namespace vistrel::camera
