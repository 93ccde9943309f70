#pragma once

#include <QMargins>

#include "appkit/NSWindow.h"
#include "linux/windows/Shell.h"
#include "linux/windows/X11Windows.h"

namespace vistrel::windows {

/// Makes a native window what its `NSWindow` is: its place, its colors, the line and the tip around a
/// popover, and its entry in lists of windows. Main thread only.
class ShellAttributes {
 public:
  ShellAttributes(const NSWindow& window, Shell& shell, X11Windows& x11)
      : window_(window), shell_(shell), x11_(x11), shownKind_(window.kind()) {}

  /// Whether the window is a popover, attached or torn off: the backend draws what is around its content.
  [[nodiscard]] bool hasChrome() const { return window_.kind() != NSWindowKind::Titled; }
  [[nodiscard]] Rect contentOnDesktop() const;

  /// Says what kind of window it will be; before it is shown for the first time.
  void applyFlags();
  /// Leaves the room that the tip needs; before each showing.
  void makeRoom();
  void applyFrame();
  /// True when they are others than before, and what lies in the window has to be drawn again.
  bool applyColors();
  /// Makes the native window, and all of it that has to be right before it comes to the screen.
  void applyBeforeShowing();
  /// What a window that is not shown gets when it is shown.
  void applyWhileShown();
  /// Draws and cuts what is around the content.
  void applyChrome();

 private:
  void applyKind();

  const NSWindow& window_;
  Shell& shell_;
  X11Windows& x11_;
  // Room around the content; kept when a popover is torn off, so that the content stays where it is.
  QMargins margins_;
  NSWindowKind shownKind_;
};

}  // namespace vistrel::windows
