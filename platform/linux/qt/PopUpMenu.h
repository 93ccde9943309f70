#pragma once

#include <QMenu>
#include <functional>
#include <memory>

#include "linux/qt/MenuRows.h"

namespace vistrel::qt {

/// One showing of a menu that the program draws itself. It pops up and returns; destroying it takes the menu
/// off the screen and tells nobody.
class PopUpMenu {
 public:
  struct Handlers {
    std::function<void()> didClose;
    /// After `didClose`.
    MenuItemChosen chosen;
  };
  PopUpMenu(const NSMenu& menu, Handlers handlers);
  PopUpMenu(const PopUpMenu&) = delete;
  PopUpMenu& operator=(const PopUpMenu&) = delete;
  ~PopUpMenu();

  /// Opens beside `anchor`; without one at the pointer.
  void show(const QRect& anchor);

 private:
  Handlers handlers_;
  QMenu* native_;
};

}  // namespace vistrel::qt
