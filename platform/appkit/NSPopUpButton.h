#pragma once

#include <memory>

#include "appkit/NSControl.h"
#include "appkit/NSMenu.h"

namespace vistrel {

/// Posted by a pop-up button before its menu opens and takes the keyboard.
inline constexpr const char* NSPopUpButtonWillPopUpNotification = "NSPopUpButtonWillPopUpNotification";

/// A button that opens a menu. As a pull-down its face is the menu's first item, which is not listed.
class NSPopUpButton : public NSButton {
 public:
  NSPopUpButton();

  [[nodiscard]] const std::shared_ptr<NSMenu>& menu() const { return menu_; }
  void setMenu(std::shared_ptr<NSMenu> menu);
  [[nodiscard]] bool pullsDown() const { return pullsDown_; }
  void setPullsDown(bool pullsDown) { pullsDown_ = pullsDown; }

  [[nodiscard]] bool acceptsFirstResponder() const override { return true; }
  /// Space and Down open the menu. A key that reaches a hidden button goes up the chain first, so that who
  /// hid the button may show it.
  void keyDown(const NSEvent& event) override;
  [[nodiscard]] bool takesKey(std::uint16_t keyCode) const;
  /// Opens the menu and returns.
  void performClick(NSObject* sender) override;
  /// The user chose an item of the open menu: its action starts at this button.
  void itemChosen(const std::shared_ptr<NSMenuItem>& item);

 private:
  std::shared_ptr<NSMenu> menu_;
  bool pullsDown_ = false;
};

}  // namespace vistrel
