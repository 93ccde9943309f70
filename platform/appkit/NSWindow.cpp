#include "appkit/NSWindow.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "appkit/NSAlert.h"
#include "appkit/NSApplication.h"
#include "appkit/NSPopUpButton.h"
#include "appkit/NSView.h"
#include "appkit/ScreenGeometry.h"
#include "backend/Backend.h"
#include "foundation/Bundle.h"
#include "foundation/NotificationCenter.h"

namespace vistrel {

namespace {

constexpr const char* kPerformClose = "performClose:";

}  // namespace

std::shared_ptr<NSWindow> NSWindow::create(const Rect& contentRect, unsigned styleMask,
                                           NSBackingStoreType /*backing*/, bool /*defer*/) {
  return std::make_shared<NSWindow>(NSWindowKind::Titled, contentRect, styleMask);
}

NSWindow::NSWindow(NSWindowKind kind, const Rect& contentRect, unsigned styleMask)
    : kind_(kind), styleMask_(styleMask), frame_(contentRect) {
  implement(kPerformClose, [this](NSObject* sender) { performClose(sender); });
  updateCloseButton();
}

NSWindow::~NSWindow() {
  if (contentView_) contentView_->setWindow(nullptr);
}

void NSWindow::setKind(NSWindowKind kind) {
  kind_ = kind;
  if (native_) native_->attributesDidChange();
}

void NSWindow::setStyleMask(unsigned mask) {
  styleMask_ = mask;
  updateCloseButton();
  if (native_) native_->attributesDidChange();
}

bool NSWindow::isClosable() const {
  return (styleMask_ & static_cast<unsigned>(NSWindowStyleMask::Closable)) != 0;
}

// Made once: a window that is closable again has its old button again, and so has the desktop.
void NSWindow::updateCloseButton() {
  if (!closeButton_ && isClosable()) {
    closeButton_ = std::make_shared<NSButton>();
    closeButton_->setAction(kPerformClose);
    closeButton_->setAccessibilityLabel(Bundle::main().localizedString("Close"));
    closeButton_->setAccessibilityHelp(Bundle::main().localizedString("Closes the window"));
    closeButton_->setWindow(this);
  }
  if (closeButton_) closeButton_->setHidden(!isClosable());
}

std::shared_ptr<NSButton> NSWindow::closeButton() const { return isClosable() ? closeButton_ : nullptr; }

NSButton* NSWindow::standardWindowButton(NSWindowButton /*button*/) const { return closeButton().get(); }

void NSWindow::setFrame(const Rect& frame) {
  frame_ = frame;
  if (contentView_) contentView_->setFrame({0, 0, frame.width, frame.height});
  if (native_) native_->attributesDidChange();
}

void NSWindow::center() {
  const Rect place =
      centeredOnMainScreen({frame_.width, frame_.height}, backend::current().session().screens());
  setFrame(place);
}

void NSWindow::setFrameAutosaveName(const std::string& name) {
  const auto origin = autosave_.start(name);
  if (!origin) return;
  const Rect wanted{origin->x, origin->y, frame_.width, frame_.height};
  setFrame(movedOntoScreen(wanted, backend::current().session().screens()));
}

void NSWindow::setTitle(std::string title) {
  title_ = std::move(title);
  if (native_) native_->attributesDidChange();
}

void NSWindow::setAccessibilityHelp(std::string text) {
  if (std::exchange(accessibilityHelp_, std::move(text)) == accessibilityHelp_) return;
  if (native_) native_->attributesDidChange();
}

void NSWindow::setContentView(std::shared_ptr<NSView> view) {
  makeFirstResponder(nullptr);
  if (contentView_) contentView_->setWindow(nullptr);
  contentView_ = std::move(view);
  if (contentView_) {
    contentView_->setWindow(this);
    contentView_->setFrame({0, 0, frame_.width, frame_.height});
  }
  contentDidChange();
}

NSAppearance NSWindow::effectiveAppearance() const {
  if (appearance_) return *appearance_;
  return {backend::current().session().isDark() ? NSAppearanceNameDarkAqua : NSAppearanceNameAqua};
}

void NSWindow::setAppearance(std::optional<NSAppearance> appearance) {
  appearance_ = std::move(appearance);
  if (native_) native_->attributesDidChange();
}

void NSWindow::appearanceDidChange() {
  if (native_) native_->attributesDidChange();
}

void NSWindow::makeNative() {
  if (native_) return;
  native_ = backend::current().windows().makeWindow(*this, *this);
  native_->contentDidChange();
  native_->firstResponderDidChange(dynamic_cast<NSView*>(firstResponder_));
}

void NSWindow::willOrderFront() { NSApplication::shared().windowWillOrderFront(shared_from_this()); }

void NSWindow::map() {
  if (std::exchange(isMapped_, true)) return;
  makeNative();
  native_->show();
}

void NSWindow::makeKeyAndOrderFront(NSObject* /*sender*/) {
  makeNative();
  const bool wasVisible = std::exchange(isVisible_, true);
  NSApplication::shared().windowDidOrderFront(shared_from_this());
  if (!wasVisible && contentView_) contentView_->viewWillAppear();
  if (wasVisible) {
    native_->activate();
  } else {
    map();
  }
  setKey(true);
}

void NSWindow::orderOut(NSObject* /*sender*/) {
  if (!isVisible_ && !isMapped_) return;
  setKey(false);
  isVisible_ = isMapped_ = isPutAside_ = false;
  if (native_) native_->hide();
  NSApplication::shared().windowDidOrderOut(this);
}

void NSWindow::performClose(NSObject* /*sender*/) {
  if (!sheet_) close();
}

void NSWindow::close() {
  if (!isVisible_ && !isMapped_) return;
  if (const auto sheet = sheet_) sheet->respond(NSModalResponse::Abort);
  autosave_.finish();
  makeFirstResponder(nullptr);
  orderOut(nullptr);
}

void NSWindow::activate() {
  if (native_ && isVisible_) native_->activate();
}

bool NSWindow::makeFirstResponder(NSResponder* responder) {
  if (responder == firstResponder_) return true;
  if (firstResponder_ && !firstResponder_->resignFirstResponder()) return false;
  // Resigning may have moved the focus already; what was asked for last holds.
  firstResponder_ = nullptr;
  if (responder && !responder->becomeFirstResponder()) responder = nullptr;
  firstResponder_ = responder;
  if (native_) native_->firstResponderDidChange(dynamic_cast<NSView*>(responder));
  return true;
}

NSResponder* NSWindow::firstResponderOrSelf() { return firstResponder_ ? firstResponder_ : this; }

Rect NSWindow::convertRectToScreen(const Rect& rect) const {
  return {rect.x + frame_.x, rect.y + frame_.y, rect.width, rect.height};
}

bool NSWindow::sendEvent(const NSEvent& event) {
  if (contentView_ && contentView_->dispatch(event)) return true;
  if (event.type() != NSEventType::KeyDown || !firstResponder_) return false;
  const auto* button = dynamic_cast<NSPopUpButton*>(firstResponder_);
  const bool isTaken = button && button->takesKey(event.keyCode());
  firstResponder_->keyDown(event);
  return isTaken;
}

void NSWindow::viewDidChange(NSView& view) {
  if (native_) native_->viewDidChange(view);
}

void NSWindow::contentDidChange() {
  if (native_) native_->contentDidChange();
}

void NSWindow::popUpMenu(NSPopUpButton& button) {
  if (native_) native_->popUpMenu(button);
}

void NSWindow::closeRequested() { performClose(nullptr); }

void NSWindow::didGainFocus() {
  NSApplication::shared().windowDidBecomeKey(this);
  setKey(true);
}

void NSWindow::didLoseFocus() { setKey(false); }

void NSWindow::setKey(bool isKey) {
  if (std::exchange(isKey_, isKey) == isKey) return;
  const char* change = isKey ? NSWindowDidBecomeKeyNotification : NSWindowDidResignKeyNotification;
  NotificationCenter::defaultCenter().post(change, this);
}

void NSWindow::didMove(const Rect& frame) {
  frame_ = frame;
  autosave_.frameDidMove();
}

// No style of ours can be minimized. Where the window manager does it all the same, it is undone.
void NSWindow::didLeaveScreen(backend::Hiding how) {
  isPutAside_ = true;
  if (how == backend::Hiding::Minimized) activate();
}

void NSWindow::tellTrackingOwners(NSEventType type) {
  if (!contentView_) return;
  const auto event = NSEvent::mouseEvent({.type = type}, this);
  // The whole view is each area's rectangle; one report serves the owners that several areas share.
  std::vector<NSResponder*> owners;
  for (const auto& area : contentView_->trackingAreas()) {
    if (std::find(owners.begin(), owners.end(), area.owner) == owners.end()) owners.push_back(area.owner);
  }
  for (NSResponder* owner : owners) {
    if (type == NSEventType::MouseEntered) owner->mouseEntered(*event);
    if (type == NSEventType::MouseExited) owner->mouseExited(*event);
  }
}

void NSWindow::pointerDidEnter() {
  isPointerInside_ = true;
  tellTrackingOwners(NSEventType::MouseEntered);
}

void NSWindow::pointerDidLeave() {
  isPointerInside_ = false;
  tellTrackingOwners(NSEventType::MouseExited);
}

void NSWindow::focusWanted(NSView* view) {
  if (view == firstResponder_) return;
  makeFirstResponder(view);
}

void NSWindow::viewClicked(NSView& view) { view.performClick(&view); }

bool NSWindow::handleEvent(const std::shared_ptr<NSEvent>& event) {
  const auto kept = shared_from_this();
  return NSApplication::shared().sendEvent(event);
}

}  // namespace vistrel
