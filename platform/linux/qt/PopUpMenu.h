#pragma once

#include <QMenu>
#include <functional>
#include <memory>

namespace vistrel {
class NSMenu;
class NSMenuItem;
}  // namespace vistrel

namespace vistrel::qt {

/// One showing of a menu that the program draws itself. It pops up and returns; destroying it takes the menu
/// off the screen and tells nobody.
class PopUpMenu {
 public:
  struct Handlers {
    std::function<void()> didClose;
    /// After `didClose`.
    std::function<void(std::shared_ptr<NSMenuItem>)> chosen;
  };
  PopUpMenu(const NSMenu& menu, Handlers handlers);
  PopUpMenu(const PopUpMenu&) = delete;
  PopUpMenu& operator=(const PopUpMenu&) = delete;
  ~PopUpMenu();

  /// Opens beside `anchor`, on the side that has the room; without one at the pointer.
  void show(const QRect& anchor);

 private:
  void addRow(const std::shared_ptr<NSMenuItem>& item);

  Handlers handlers_;
  QMenu* native_;
};

}  // namespace vistrel::qt
