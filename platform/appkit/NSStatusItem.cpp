#include "appkit/NSStatusItem.h"

#include <utility>

#include "appkit/NSMenu.h"
#include "appkit/NSStatusBar.h"
#include "backend/Backend.h"

namespace vistrel {

void NSStatusBarButton::setImage(std::shared_ptr<NSImage> image) {
  NSButton::setImage(std::move(image));
  item_.bar_.itemDidChange(item_);
}

void NSStatusBarButton::setHighlighted(bool isHighlighted) {
  NSButton::setHighlighted(isHighlighted);
  item_.bar_.setHighlighted(item_, isHighlighted);
}

void NSStatusBarButton::setToolTip(const std::string& text) { item_.bar_.setToolTip(item_, text); }

void NSStatusBarButton::performClick(NSObject* sender) {
  if (item_.menu()) {
    item_.bar_.openMenu(item_);
  } else {
    NSButton::performClick(sender);
  }
}

NSStatusItem::NSStatusItem(NSStatusBar& bar)
    : bar_(bar),
      button_(std::make_shared<NSStatusBarButton>(*this)),
      window_(std::make_shared<NSWindow>(NSWindowKind::StatusBar, Rect{}, 0U)) {}

NSStatusItem::~NSStatusItem() { bar_.itemWillEnd(*this); }

const std::shared_ptr<NSStatusBarButton>& NSStatusItem::button() const {
  updateWindow();
  return button_;
}

// The icon may have moved, come or gone since it was last looked at.
void NSStatusItem::updateWindow() const {
  const auto frame = backend::current().statusArea().iconFrame();
  button_->setWindow(nullptr);
  if (!frame) return;
  window_->setFrame(*frame);
  button_->setFrame({0, 0, frame->width, frame->height});
  button_->setWindow(window_.get());
}

void NSStatusItem::setMenu(std::shared_ptr<NSMenu> menu) { menu_ = std::move(menu); }

void NSStatusItem::setUpcomingMenu(std::shared_ptr<NSMenu> menu) { bar_.mirrorMenu(*this, std::move(menu)); }

}  // namespace vistrel
