#include "appkit/NSPopUpButton.h"

#include <utility>

#include "appkit/NSWindow.h"
#include "base/KeyCodes.h"
#include "foundation/NotificationCenter.h"

namespace vistrel {

NSPopUpButton::NSPopUpButton() : NSButton(std::make_unique<NSPopUpButtonCell>()) {}

void NSPopUpButton::setMenu(std::shared_ptr<NSMenu> menu) {
  menu_ = std::move(menu);
  didChange();
}

void NSPopUpButton::keyDown(const NSEvent& event) {
  const bool wasHidden = isHidden();
  if (wasHidden) NSButton::keyDown(event);
  if (takesKey(event.keyCode())) {
    performClick(this);
  } else if (!wasHidden) {
    NSButton::keyDown(event);
  }
}

bool NSPopUpButton::takesKey(std::uint16_t keyCode) const {
  return keyCode == kVK_Space || keyCode == kVK_DownArrow;
}

void NSPopUpButton::performClick(NSObject* /*sender*/) {
  if (!isEnabled() || !menu_ || !window()) return;
  NotificationCenter::defaultCenter().post(NSPopUpButtonWillPopUpNotification, this);
  window()->popUpMenu(*this);
}

void NSPopUpButton::itemChosen(const std::shared_ptr<NSMenuItem>& item) {
  const auto kept = shared_from_this();
  NSMenu::performActionForItem(item, this);
}

}  // namespace vistrel
