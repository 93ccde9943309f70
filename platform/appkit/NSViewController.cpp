#include "appkit/NSViewController.h"

#include <utility>

#include "appkit/NSView.h"
#include "appkit/NSWindow.h"

namespace vistrel {

NSViewController::~NSViewController() {
  if (!view_) return;
  view_->setNextResponder(nullptr);
  view_->removeTrackingAreasOf(*this);
}

void NSViewController::setView(std::shared_ptr<NSView> view) {
  view_ = std::move(view);
  view_->setNextResponder(this);
}

NSView& NSViewController::view() {
  if (!view_) setView(std::make_shared<NSView>());
  if (!std::exchange(isLoaded_, true)) viewDidLoad();
  return *view_;
}

void NSViewController::connectOutlet(const std::string& /*name*/, const std::shared_ptr<NSView>& /*view*/) {}

NSResponder* NSViewController::nextResponder() const { return view_ ? view_->window() : nullptr; }

}  // namespace vistrel
