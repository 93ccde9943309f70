#include "KeyboardShortcuts/LocalEventMonitor.h"

#include <utility>

namespace vistrel::KeyboardShortcuts {

LocalEventMonitor::LocalEventMonitor(NSEventMask events, NSEvent::Handler callback)
    : events_(events), callback_(std::move(callback)) {}

LocalEventMonitor::~LocalEventMonitor() { NSEvent::removeMonitor(monitor_.lock()); }

std::shared_ptr<LocalEventMonitor> LocalEventMonitor::start() {
  monitor_ = NSEvent::addLocalMonitor(events_, callback_);
  return shared_from_this();
}

}  // namespace vistrel::KeyboardShortcuts
