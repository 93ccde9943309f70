#include "appkit/CALayer.h"

#include "appkit/NSApplication.h"
#include "appkit/NSView.h"
#include "backend/Backend.h"

namespace vistrel {

void CALayer::setBackgroundColor(const CGColor& color) {
  backgroundColor_ = color;
  setNeedsDisplay();
}

void CALayer::setCornerRadius(double radius) {
  cornerRadius_ = radius;
  setNeedsDisplay();
}

void CALayer::setHidden(bool isHidden) {
  isHidden_ = isHidden;
  setNeedsDisplay();
}

void CALayer::setNeedsDisplay() {
  if (owner_) owner_->didChange();
}

void CATransaction::flush() {
  NSApplication::shared().mapComingWindow();
  backend::current().windows().flush();
}

}  // namespace vistrel
