#pragma once

#include <memory>
#include <utility>

#include "appkit/NSEvent.h"

namespace vistrel::KeyboardShortcuts {

/// Watches this program's events before they are dispatched, from `start` until its death.
class LocalEventMonitor : public std::enable_shared_from_this<LocalEventMonitor> {
 public:
  /// `callback` answers the event to go on with, or none to swallow it; it may let go of this monitor.
  LocalEventMonitor(NSEventMask events, NSEvent::Handler callback)
      : events_(events), callback_(std::move(callback)) {}
  LocalEventMonitor(const LocalEventMonitor&) = delete;
  LocalEventMonitor& operator=(const LocalEventMonitor&) = delete;
  ~LocalEventMonitor() { NSEvent::removeMonitor(monitor_.lock()); }

  /// Once an object. Answers the monitor itself.
  std::shared_ptr<LocalEventMonitor> start() {
    monitor_ = NSEvent::addLocalMonitor(events_, callback_);
    return shared_from_this();
  }

 private:
  NSEventMask events_;
  NSEvent::Handler callback_;
  std::weak_ptr<NSEvent::Monitor> monitor_;
};

}  // namespace vistrel::KeyboardShortcuts
