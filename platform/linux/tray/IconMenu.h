#pragma once

#include <QMenu>
#include <functional>
#include <memory>

#include "linux/qt/MenuRows.h"

namespace vistrel::tray {

/// One showing of the icon's menu where no tray host draws it. It pops up and returns; destroying it takes
/// the menu off the screen and tells nobody.
class IconMenu {
 public:
  struct Handlers {
    std::function<void()> didClose;
    /// After `didClose`.
    qt::MenuItemChosen chosen;
  };
  IconMenu(const NSMenu& menu, Handlers handlers);
  IconMenu(const IconMenu&) = delete;
  IconMenu& operator=(const IconMenu&) = delete;
  ~IconMenu();

  /// Opens beside `anchor`; without one at the pointer.
  void show(const QRect& anchor);

 private:
  Handlers handlers_;
  QMenu* native_;
};

}  // namespace vistrel::tray
