#include "appkit/NSPopover.h"

#include <chrono>
#include <utility>

#include "appkit/NSApplication.h"
#include "appkit/NSControl.h"
#include "appkit/NSStatusBar.h"
#include "appkit/NSViewController.h"
#include "appkit/PopoverWindow.h"
#include "appkit/ScreenGeometry.h"
#include "backend/Backend.h"
#include "base/Log.h"

namespace vistrel {

namespace {

// A window manager that takes longer does not answer any more.
constexpr std::chrono::seconds kLongestWayToScreen(2);

std::optional<Rect> anchorOnDesktop(const Rect& rect, const NSView& view) {
  const NSWindow* window = view.window();
  if (!window) return std::nullopt;
  return window->convertRectToScreen(view.convertRectToWindow(rect));
}

}  // namespace

NSPopover::~NSPopover() {
  stopWatching();
  if (isShown_) window_->close();
  if (!window_) return;
  window_->popoverWillEnd();
  // The controller may outlive the popover's window, and must not find a view in it.
  window_->setContentView(nullptr);
}

NSWindow* NSPopover::window() const { return window_.get(); }

void NSPopover::setAppearance(const NSAppearance& appearance) {
  appearance_ = appearance;
  if (window_) window_->setAppearance(appearance);
}

void NSPopover::setContentViewController(std::shared_ptr<NSViewController> controller) {
  const auto previous = std::exchange(controller_, std::move(controller));
  if (!isShown_) return;
  window_->setContentView(nullptr);
  if (previous) previous->viewDidDisappear();
  appear();
}

void NSPopover::appear() {
  const auto view = controller_->view().shared_from_this();
  if (window_->contentView() != view) window_->setContentView(view);
  controller_->viewWillAppear();
}

// Kept between showings, so that opening waits for nothing but the camera.
void NSPopover::makeWindow() {
  if (!window_) window_ = std::make_shared<PopoverWindow>(*this, Rect{});
  window_->setStyleMask(static_cast<unsigned>(NSWindowStyleMask::Borderless));
  window_->setKind(NSWindowKind::Popover);
  window_->setTitle(title_);
  window_->setAppearance(appearance_);
}

PopoverPlace NSPopover::placeAt(const std::optional<Rect>& anchor) const {
  auto& session = backend::current().session();
  if (!backend::current().statusArea().hasTray()) {
    return placeWithoutTray(contentSize_, session.pointerLocation(), session.screens());
  }
  return placePopover(contentSize_, anchor, session.pointerLocation(), session.screens());
}

void NSPopover::showRelativeToRect(const Rect& rect, NSView& view, NSRectEdge /*preferredEdge*/) {
  if (isShown_ || !controller_) return;
  const auto place = placeAt(anchorOnDesktop(rect, view));
  anchor_ = view.weak_from_this();
  makeWindow();
  window_->setTip(place.tip);
  window_->setFrame(place.frame);
  NSStatusBar::system().popoverWillOpen();
  isShown_ = true;
  try {
    window_->willOrderFront();
    appear();
    window_->makeKeyAndOrderFront(this);
    watchPresses();
    watchScreen();
  } catch (...) {
    performClose(nullptr);  // half of it open is worse than nothing
    throw;
  }
}

// Without a window nobody would see that the camera is on.
void NSPopover::watchScreen() {
  arrival_ = backend::current().mainLoop().after(kLongestWayToScreen, [this] {
    if (window_->isOnScreen()) return;
    Log::warning(
        "vistrel: the desktop did not show the mirror's window, so it is closed again. Try once more.");
    performClose(nullptr);
  });
}

void NSPopover::performClose(NSObject* /*sender*/) {
  if (!isShown_) return;
  stopWatching();
  arrival_.reset();
  isShown_ = false;
  isDetached_ = false;
  const auto kept = window_;
  kept->close();
  endHighlight();
  if (controller_) controller_->viewDidDisappear();
  if (delegate_) delegate_->popoverDidClose(*this);
}

void NSPopover::endHighlight() {
  if (auto* button = dynamic_cast<NSButton*>(anchor_.lock().get())) button->setHighlighted(false);
}

void NSPopover::watchPresses() {
  if (behavior_ != NSPopoverBehavior::Transient) return;
  backend::current().windows().setOutsidePressClient(this);
  const NSEventMask presses = maskOf(NSEventType::LeftMouseDown) | maskOf(NSEventType::RightMouseDown) |
                              maskOf(NSEventType::OtherMouseDown);
  ownPresses_ = NSEvent::addLocalMonitor(presses, [this](const std::shared_ptr<NSEvent>& event) {
    const bool isElsewhere = event->window() && event->window() != window_.get();
    if (isElsewhere && !NSApplication::shared().isModal()) performClose(nullptr);
    return event;
  });
}

void NSPopover::stopWatching() {
  NSEvent::removeMonitor(std::exchange(ownPresses_, nullptr));
  if (isShown_ && !isDetached_) backend::current().windows().setOutsidePressClient(nullptr);
}

void NSPopover::pressedOutside(Point location, Press press) {
  if (!isShown_ || isDetached_ || NSApplication::shared().isModal()) return;
  performClose(nullptr);
  // No click of the icon comes from a press that its host did not get.
  if (press == Press::HandedOn) NSStatusBar::system().closedByPress(location);
}

void NSPopover::tearOff() {
  if (!isShown_ || isDetached_) return;
  if (delegate_ && !delegate_->popoverShouldDetach(*this)) return;
  stopWatching();
  isDetached_ = true;
  endHighlight();
  window_->setTip(std::nullopt);
  window_->setStyleMask(static_cast<unsigned>(NSWindowStyleMask::Closable));
  window_->setKind(NSWindowKind::Detached);
  if (delegate_) delegate_->popoverDidDetach(*this);
}

}  // namespace vistrel
