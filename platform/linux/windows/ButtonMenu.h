#pragma once

#include <QAbstractButton>
#include <QMenu>

namespace vistrel {
class NSPopUpButton;
}

namespace vistrel::windows {

/// The menu of a pull-down button on screen: a snapshot of its items. The button is held down while it is
/// open. Deletes itself after it has closed.
class ButtonMenu final : public QMenu {
 public:
  /// `face` shows the button, and is the menu's parent. What the user chooses is told to the button from the
  /// main loop, after the close.
  ButtonMenu(QAbstractButton& face, NSPopUpButton& button);

  /// Pops up beside the face, with the first item marked for the keyboard or none for a pointer.
  enum class OpenedBy { Keyboard, Pointer };
  void popUp(OpenedBy opener);

 private:
  QAbstractButton& face_;
};

}  // namespace vistrel::windows
