#include "appkit/NSApplication.h"

#include <algorithm>
#include <utility>

#include "appkit/NSAlert.h"
#include "appkit/NSMenu.h"
#include "appkit/NSWindow.h"
#include "backend/Backend.h"
#include "foundation/MainQueue.h"
#include "foundation/NotificationCenter.h"
#include "foundation/ProcessState.h"

namespace vistrel {

NSApplication& NSApplication::shared() { return ProcessState<NSApplication>::shared(); }

void NSApplication::reset() {
  delegate_ = nullptr;
  delegateObject_ = nullptr;
  currentEvent_.reset();
  queue_.clear();
  mainMenu_.reset();
  windows_.clear();
  comingWindow_.reset();
  modals_.clear();
  isActive_ = false;
  isTerminating_ = false;
}

void NSApplication::setDelegate(NSApplicationDelegate* delegate, NSObject* delegateObject) {
  delegate_ = delegate;
  delegateObject_ = delegateObject;
}

int NSApplication::run() {
  backend::current().session().setClient(this);
  return backend::current().mainLoop().run();
}

void NSApplication::terminate(NSObject* /*sender*/) {
  if (std::exchange(isTerminating_, true)) return;
  if (delegate_) delegate_->applicationWillTerminate();
  // Closed in the orderly way, so that cameras get their buffers back before the process goes.
  const auto open = windows_;
  for (const auto& window : open) {
    if (const auto sheet = window->attachedSheet()) sheet->respond(NSModalResponse::Abort);
    window->performClose(this);
  }
  backend::current().mainLoop().quit();
}

void NSApplication::postEvent(std::shared_ptr<NSEvent> event, bool atStart) {
  queue_.insert(atStart ? queue_.begin() : queue_.end(), std::move(event));
  MainQueue::async([this] { dispatchQueuedEvent(); });
}

void NSApplication::dispatchQueuedEvent() {
  if (queue_.empty()) return;
  const auto event = queue_.front();
  queue_.pop_front();
  sendEvent(event);
}

void NSApplication::withCurrentEvent(const std::shared_ptr<NSEvent>& event,
                                     const std::function<void()>& work) {
  const auto before = std::exchange(currentEvent_, event);
  work();
  currentEvent_ = before;
}

bool NSApplication::sendEvent(const std::shared_ptr<NSEvent>& event) {
  bool wasTaken = false;
  withCurrentEvent(event, [&] {
    const auto filtered = NSEvent::filter(event);
    wasTaken = !filtered || (filtered->window() && filtered->window()->sendEvent(*filtered));
  });
  return wasTaken;
}

bool NSApplication::sendAction(const Selector& action, NSObject* sender, NSResponder* start) {
  if (!start && keyWindow()) start = keyWindow()->firstResponderOrSelf();
  if (start && start->tryToPerform(action, sender)) return true;
  return perform(action, sender);
}

bool NSApplication::respondsToSelector(const Selector& selector) const {
  return NSResponder::respondsToSelector(selector) ||
         (delegateObject_ && delegateObject_->respondsToSelector(selector));
}

bool NSApplication::perform(const Selector& selector, NSObject* sender) {
  if (NSResponder::perform(selector, sender)) return true;
  return delegateObject_ && delegateObject_->perform(selector, sender);
}

void NSApplication::activateIgnoringOtherApps(bool /*ignoringOtherApps*/) {
  if (!windows_.empty()) windows_.back()->activate();
}

NSWindow* NSApplication::keyWindow() const {
  const auto isKey = [](const auto& window) { return window->isKeyWindow(); };
  const auto found = std::find_if(windows_.rbegin(), windows_.rend(), isKey);
  return found == windows_.rend() ? nullptr : found->get();
}

int NSApplication::runModalForWindow(NSWindow* window) {
  modals_.push_back({window});
  backend::current().mainLoop().runModal();
  const int code = modals_.back().code;
  modals_.pop_back();
  if (!modals_.empty() && modals_.back().isStopped) backend::current().mainLoop().endModal();
  return code;
}

void NSApplication::stopModal(int code, const NSWindow* window) {
  const auto isMeant = [&](const Modal& modal) { return modal.window == window && !modal.isStopped; };
  const auto found = std::find_if(modals_.rbegin(), modals_.rend(), isMeant);
  if (found == modals_.rend()) return;
  *found = {window, code, true};
  if (found == modals_.rbegin()) backend::current().mainLoop().endModal();
}

void NSApplication::mapComingWindow() {
  if (const auto window = comingWindow_.lock()) window->map();
}

void NSApplication::windowDidOrderFront(const std::shared_ptr<NSWindow>& window) {
  comingWindow_.reset();
  std::erase(windows_, window);
  windows_.push_back(window);
}

void NSApplication::windowDidOrderOut(NSWindow* window) {
  if (comingWindow_.lock().get() == window) comingWindow_.reset();
  const auto isIt = [&](const auto& listed) { return listed.get() == window; };
  const auto found = std::find_if(windows_.begin(), windows_.end(), isIt);
  if (found == windows_.end()) return;
  // Kept for this turn: the window may be inside one of its own callbacks.
  MainQueue::async([kept = *found] {});
  windows_.erase(found);
}

void NSApplication::windowDidBecomeKey(NSWindow* window) {
  const auto isIt = [&](const auto& listed) { return listed.get() == window; };
  const auto found = std::find_if(windows_.begin(), windows_.end(), isIt);
  if (found != windows_.end()) std::rotate(found, found + 1, windows_.end());
}

void NSApplication::didFinishLaunching() {
  if (delegate_) delegate_->applicationDidFinishLaunching();
}

void NSApplication::reopen() {
  // A popover that hangs from its icon is no window to the user; a torn-off one is.
  const auto isWindow = [](const auto& window) {
    return window->kind() != NSWindowKind::Popover && !window->isPutAside();
  };
  const bool hasWindows = std::any_of(windows_.begin(), windows_.end(), isWindow);
  if (delegate_) delegate_->applicationShouldHandleReopen(hasWindows);
}

void NSApplication::actionRequested(const std::string& action) {
  if (delegate_) delegate_->applicationPerformAction(action);
}

void NSApplication::didBecomeActive() { isActive_ = true; }

void NSApplication::willResignActive() {
  if (delegate_) delegate_->applicationWillResignActive();
  isActive_ = false;
}

void NSApplication::screensDidChange() {
  NotificationCenter::defaultCenter().post(NSApplicationDidChangeScreenParametersNotification, this);
}

void NSApplication::appearanceDidChange() {
  DistributedNotificationCenter::defaultCenter().post("AppleInterfaceThemeChangedNotification");
  contrastDidChange();
}

void NSApplication::contrastDidChange() {
  const auto open = windows_;
  for (const auto& window : open) window->appearanceDidChange();
}

void NSApplication::terminateRequested() { terminate(nullptr); }

}  // namespace vistrel
