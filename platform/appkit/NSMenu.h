#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "appkit/NSMenuItem.h"
#include "foundation/NSObject.h"

namespace vistrel {

class NSMenu;
class NSResponder;

class NSMenuDelegate {
 public:
  virtual ~NSMenuDelegate() = default;
  /// The menu has left the screen; the action of a chosen item runs after it.
  virtual void menuDidClose(NSMenu& menu) = 0;
};

/// A menu: plain data, drawn by a backend.
class NSMenu : public NSObject {
 public:
  explicit NSMenu(std::string title = {}) : title_(std::move(title)) {}

  [[nodiscard]] const std::string& title() const { return title_; }
  [[nodiscard]] const std::vector<std::shared_ptr<NSMenuItem>>& itemArray() const { return items_; }
  void addItem(std::shared_ptr<NSMenuItem> item) { items_.push_back(std::move(item)); }
  void insertItem(std::shared_ptr<NSMenuItem> item, std::size_t index);

  [[nodiscard]] NSMenuDelegate* delegate() const { return delegate_; }
  /// The delegate must outlive the menu's use.
  void setDelegate(NSMenuDelegate* delegate) { delegate_ = delegate; }

  /// Sends the item's action up the responder chain, from `start` where one is given, else from the key
  /// window.
  static void performActionForItem(const std::shared_ptr<NSMenuItem>& item, NSResponder* start = nullptr);

 private:
  std::string title_;
  std::vector<std::shared_ptr<NSMenuItem>> items_;
  NSMenuDelegate* delegate_ = nullptr;
};

}  // namespace vistrel
