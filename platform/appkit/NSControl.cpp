#include "appkit/NSControl.h"

#include <utility>

#include "appkit/NSApplication.h"

namespace vistrel {

void NSControl::setEnabled(bool isEnabled) {
  isEnabled_ = isEnabled;
  didChange();
}

void NSControl::sendAction() {
  if (!action_.empty()) NSApplication::shared().sendAction(action_, this, this);
}

void NSButtonCell::setTarget(NSObject* target, Selector action) {
  target_ = target;
  action_ = std::move(action);
}

void NSButtonCell::performClick(NSObject* sender) {
  if (target_) target_->perform(action_, sender);
}

NSButton::NSButton() : cell_(std::make_unique<NSButtonCell>()) {}

void NSButton::setTitle(std::string title) {
  title_ = std::move(title);
  didChange();
}

void NSButton::setImage(std::shared_ptr<NSImage> image) {
  image_ = std::move(image);
  didChange();
}

void NSButton::setHighlighted(bool isHighlighted) {
  isHighlighted_ = isHighlighted;
  didChange();
}

NSEventMask NSButton::sendActionOn(NSEventMask mask) { return std::exchange(actionMask_, mask); }

void NSButton::performClick(NSObject* /*sender*/) {
  if (isEnabled()) sendAction();
}

void NSTextField::setStringValue(std::string text) {
  stringValue_ = std::move(text);
  didChange();
}

void NSImageView::setImage(std::shared_ptr<NSImage> image) {
  image_ = std::move(image);
  didChange();
}

}  // namespace vistrel
