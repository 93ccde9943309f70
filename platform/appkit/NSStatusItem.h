#pragma once

#include <memory>
#include <string>

#include "appkit/NSControl.h"
#include "appkit/NSWindow.h"

namespace vistrel {

class NSMenu;
class NSStatusBar;
class NSStatusItem;

/// The button that stands for a status item. It is in a window while the desktop shows the icon.
class NSStatusBarButton final : public NSButton {
 public:
  explicit NSStatusBarButton(NSStatusItem& item) : item_(item) {}
  void setImage(std::shared_ptr<NSImage> image) override;
  void setHighlighted(bool isHighlighted) override;
  /// What the desktop says of the icon.
  void setToolTip(const std::string& text);
  /// Opens the item's menu where one is attached, else sends the action.
  void performClick(NSObject* sender) override;

 private:
  NSStatusItem& item_;
};

/// One place in the status bar.
class NSStatusItem : public std::enable_shared_from_this<NSStatusItem> {
 public:
  explicit NSStatusItem(NSStatusBar& bar);
  NSStatusItem(const NSStatusItem&) = delete;
  NSStatusItem& operator=(const NSStatusItem&) = delete;
  ~NSStatusItem();

  [[nodiscard]] const std::shared_ptr<NSStatusBarButton>& button() const;
  [[nodiscard]] const std::shared_ptr<NSMenu>& menu() const { return menu_; }
  /// Attaches a menu, which the next click opens, or detaches it.
  void setMenu(std::shared_ptr<NSMenu> menu);
  /// Tells the desktop what the next showing will hold; attaches nothing. Hosts that draw menus themselves
  /// ask for the content before the program hears of the click.
  void setUpcomingMenu(std::shared_ptr<NSMenu> menu);

 private:
  friend class NSStatusBarButton;
  void updateWindow() const;

  NSStatusBar& bar_;
  std::shared_ptr<NSStatusBarButton> button_;
  std::shared_ptr<NSWindow> window_;
  std::shared_ptr<NSMenu> menu_;
};

}  // namespace vistrel
