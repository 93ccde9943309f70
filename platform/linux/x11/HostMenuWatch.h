#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <memory>

#include "linux/x11/X11Connection.h"

namespace vistrel::x11 {

/// Sees the end of a menu that another program, such as a panel, shows for this one: by the popup-menu window
/// (EWMH) that comes and goes. Watches nothing unless it was asked to. Main thread only.
class HostMenuWatch {
 public:
  explicit HostMenuWatch(X11Connection& connection);
  HostMenuWatch(const HostMenuWatch&) = delete;
  HostMenuWatch& operator=(const HostMenuWatch&) = delete;
  ~HostMenuWatch() { stop(); }

  /// A menu is on the screen, or about to be: `closed` is called once, from the main loop, when it is gone.
  /// Never, where it is no window of this X server.
  void start(std::function<void()> closed);
  void stop();
  /// Whether any program shows such a menu at this moment.
  [[nodiscard]] bool isMenuOnScreen();

 private:
  enum class Listening { Off, On };
  void listen(Listening listening);
  void eventCame(const xcb_generic_event_t& event);
  void look();
  /// What was asked about a window and not answered yet.
  struct Question {
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_property_cookie_t type;
  };
  [[nodiscard]] Question ask(xcb_window_t window);
  [[nodiscard]] bool isMenu(const Question& question);

  X11Connection& connection_;
  xcb_atom_t windowType_ = XCB_ATOM_NONE;
  xcb_atom_t popupMenu_ = XCB_ATOM_NONE;
  std::function<void()> closed_;
  bool wasSeen_ = false;
  std::shared_ptr<X11Connection::Handler> subscription_;
};

}  // namespace vistrel::x11
