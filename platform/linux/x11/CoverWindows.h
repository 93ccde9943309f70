#pragma once

#include <xcb/xcb.h>

#include <memory>
#include <vector>

namespace vistrel::x11 {

/// Invisible, unmanaged windows over parts of the desktop that take the presses there. Needs a compositing
/// manager: without one they would be black. They have a connection of their own.
class CoverWindows {
 public:
  /// Covers nothing yet. Where the server gives no transparent window, it never will.
  CoverWindows();

  /// Whether it can cover anything.
  [[nodiscard]] bool isAble() const { return isAble_; }
  /// What to wait at until the server has something to tell.
  [[nodiscard]] int descriptor() const { return xcb_get_file_descriptor(connection_.get()); }
  /// Covers these parts of the desktop and no others, in pixels; again, too, after a press has ended it.
  void setParts(const std::vector<xcb_rectangle_t>& parts);
  /// Takes what the server has told without waiting for more: with a press on a window all of them go off the
  /// screen. False when the server is gone.
  [[nodiscard]] bool hearPresses();

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };
  [[nodiscard]] bool findVisual();
  [[nodiscard]] bool watchPresses();
  [[nodiscard]] xcb_window_t makeWindow(const xcb_rectangle_t& part);
  [[nodiscard]] bool isPointerOnCover();

  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  xcb_visualid_t visual_ = XCB_NONE;
  xcb_colormap_t colors_ = XCB_NONE;
  xcb_atom_t type_ = XCB_ATOM_NONE;
  xcb_atom_t menu_ = XCB_ATOM_NONE;
  bool isAble_ = false;
  std::vector<xcb_window_t> windows_;
};

}  // namespace vistrel::x11
