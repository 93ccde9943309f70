#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Geometry.h"

namespace vistrel {
class NSAlert;
class NSEvent;
class NSMenu;
class NSMenuItem;
class NSPopUpButton;
class NSView;
class NSWindow;
}  // namespace vistrel

namespace vistrel::backend {

/// How the desktop takes a window off the screen without closing it.
enum class Hiding {
  Minimized,     ///< this window alone
  DesktopShown,  ///< every window, so that the desktop is seen
  DesktopLeft,   ///< the windows of a virtual desktop, for those of another
};

/// What a window on screen reports. Called on the main thread from the main loop. The backend changes nothing
/// by itself: each report is a fact or a wish, and the vocabulary answers with commands.
class WindowClient {
 public:
  virtual ~WindowClient() = default;
  /// The window manager or the user wants it closed.
  virtual void closeRequested() = 0;
  virtual void didGainFocus() = 0;
  virtual void didLoseFocus() = 0;
  /// The user or the window manager moved it; content rectangle on the desktop.
  virtual void didMove(const Rect& frame) = 0;
  /// The desktop took it off the screen and keeps it, or put it back. `NativeWindow::activate` brings it
  /// back.
  virtual void didLeaveScreen(Hiding how) = 0;
  virtual void didReturnToScreen() = 0;
  /// The user drags the window by its content, beyond the threshold, or asks for it without the pointer: an
  /// attached popover is torn off. The backend goes on moving the window with the pointer.
  virtual void dragDidBegin() = 0;
  /// The pointer came over the content, or left it; also without a movement of its own.
  virtual void pointerDidEnter() = 0;
  virtual void pointerDidLeave() = 0;
  /// A native control wants the focus (a click or the Tab key); none: the focus should leave all controls.
  virtual void focusWanted(NSView* view) = 0;
  /// The user pressed a native control.
  virtual void viewClicked(NSView& view) = 0;
  /// A key, button, wheel or pinch event for the window, or a movement with the secondary button held, before
  /// its native handling. True when it was swallowed.
  virtual bool handleEvent(const std::shared_ptr<NSEvent>& event) = 0;
};

/// One native window. Reads what it shows from its `NSWindow`; destroying it takes it off the screen.
class NativeWindow {
 public:
  virtual ~NativeWindow() = default;
  /// Builds native controls for the window's content view tree, replacing earlier ones.
  virtual void contentDidChange() = 0;
  /// Maps the window at the `NSWindow`'s frame, in front, with the focus.
  virtual void show() = 0;
  virtual void hide() = 0;
  /// Whether the desktop shows it, which is asked anew: for rare moments.
  [[nodiscard]] virtual bool isOnScreen() const = 0;
  /// The frame, title, style, level or appearance of the `NSWindow` changed.
  virtual void attributesDidChange() = 0;
  /// A view of the tree changed: hidden, enabled, text, layer, menu, placeholder …
  virtual void viewDidChange(NSView& view) = 0;
  /// The window's first responder is now `view`; none: no control has the focus.
  virtual void firstResponderDidChange(NSView* view) = 0;
  /// Opens the button's menu beside it and returns; `NSPopUpButton::itemChosen` is called with what is
  /// chosen.
  virtual void popUpMenu(NSPopUpButton& button) = 0;
  /// On the screen, in front of the other windows, with the focus.
  virtual void activate() = 0;
};

/// Told about presses anywhere on the desktop.
class OutsidePressClient {
 public:
  virtual ~OutsidePressClient() = default;
  /// Who else gets a press: what was pressed, or nobody.
  enum class Press { HandedOn, Swallowed };
  /// A button went down, who knows where. Told before the click that comes of it, however quick that is.
  virtual void pressBegan() = 0;
  /// A button went down outside all of the program's windows and menus. Told once that is certain.
  virtual void pressedOutside(Point location, Press press) = 0;
};

/// Makes windows, menus and alerts. Main thread only.
class WindowSystem {
 public:
  virtual ~WindowSystem() = default;
  [[nodiscard]] virtual std::unique_ptr<NativeWindow> makeWindow(NSWindow& window, WindowClient& client) = 0;
  /// Sends what was commanded and not sent yet. Called before something blocks the main loop.
  virtual void flush() = 0;
  /// While a client is set, presses outside are reported to it. Null: nothing is watched.
  virtual void setOutsidePressClient(OutsidePressClient* client) = 0;
  /// Shows an alert, as a sheet on `parent` where there is one, and returns; `NSAlert::respond` is called
  /// when the user answers.
  virtual void showAlert(const std::shared_ptr<NSAlert>& alert, NSWindow* parent) = 0;
};

}  // namespace vistrel::backend
