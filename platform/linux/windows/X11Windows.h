#pragma once

#include <xcb/xcb.h>

#include <QColor>
#include <QRegion>
#include <QWindow>

namespace vistrel::windows {

/// What Qt has no words for about windows on an X11 desktop. Main thread only.
class X11Windows {
 public:
  X11Windows();

  enum class ListedAs { Window, Accessory };
  /// Puts a window on the window list or takes it off, mapped or not.
  void setListed(const QWindow& window, ListedAs listed);

  /// Takes the window out of the group that Qt puts a shown utility window into: some managers hide such a
  /// group whenever another program is active.
  void standAlone(const QWindow& window);

  /// Whether windows are blended with what is below them, so that one may have clear parts. Not every
  /// compositor of a Wayland session cuts windows.
  [[nodiscard]] bool areWindowsBlended() const;

  /// Cuts the window to `shape`, in physical pixels.
  void setShape(const QWindow& window, const QRegion& shape);

  /// Makes the window manager take the next mapping or activation of a window as the user's wish of this
  /// moment. Some wishes (a hot key, a tray host's message) reach the program past its own connection, and
  /// without this they look older than the user's last key in another program.
  void noteUserAction();

  /// Asks the window manager for the focus as the user's own wish, of this moment. What an application asks
  /// for by itself, as Qt does, a manager that guards the focus strictly refuses.
  void activate(const QWindow& window);

  /// What the server fills the window with where nothing was painted yet: it needs no turn of the main loop.
  void setBackground(const QWindow& window, const QColor& color);

  /// Sends what was asked for and not sent yet.
  void flush();

  [[nodiscard]] bool isXWayland() const { return isXWayland_; }

  enum class Presence { None, Unviewable, Viewable };
  /// What the server knows of the window.
  [[nodiscard]] Presence presenceOf(const QWindow& window) const;

  /// Whether the keyboard focus is in `window`, whatever a grab has told it.
  [[nodiscard]] bool hasFocus(const QWindow& window) const;

 private:
  void writeState(xcb_window_t window, ListedAs listed);
  void askForState(xcb_window_t window, ListedAs listed);

  xcb_connection_t* connection_ = nullptr;
  bool isXWayland_ = false;
  xcb_atom_t state_ = 0;
  xcb_atom_t activeWindow_ = 0;
  xcb_atom_t skipTaskbar_ = 0;
  xcb_atom_t skipPager_ = 0;
};

}  // namespace vistrel::windows
