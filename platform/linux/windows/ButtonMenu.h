#pragma once

#include <QMenu>
#include <memory>

#include "linux/qt/MenuRows.h"

namespace vistrel::windows {

/// The menu of a pull-down button on screen: a snapshot of its items. Deletes itself after it has closed.
class ButtonMenu final : public QMenu {
 public:
  /// `opener`: whose child the menu is. `first`: index of the first item that is listed. `chosen` is called
  /// from the main loop, after the close.
  ButtonMenu(QWidget& opener, const std::shared_ptr<NSMenu>& menu, std::size_t first,
             qt::MenuItemChosen chosen);

  /// Pops up beside `anchor`, on the desktop, with the first item marked for the keyboard or none for a
  /// pointer.
  enum class OpenedBy { Keyboard, Pointer };
  void popUpBeside(const QRect& anchor, OpenedBy opener);
};

}  // namespace vistrel::windows
