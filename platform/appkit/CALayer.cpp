#include "appkit/CALayer.h"

#include "appkit/NSApplication.h"
#include "appkit/NSView.h"
#include "backend/Backend.h"

namespace vistrel {

void CALayer::setBackgroundColor(const CGColor& color) {
  backgroundColor_ = color;
  didChange();
}

void CALayer::setCornerRadius(double radius) {
  cornerRadius_ = radius;
  didChange();
}

void CALayer::setHidden(bool isHidden) {
  isHidden_ = isHidden;
  didChange();
}

void CALayer::didChange() {
  if (owner_) owner_->didChange();
}

void CATransaction::flush() {
  NSApplication::shared().mapComingWindow();
  backend::current().windows().flush();
}

}  // namespace vistrel
