#pragma once

#include <xcb/xcb.h>

#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace vistrel::x11 {

/// Invisible, unmanaged windows over parts of the desktop that take the presses there. Needs a compositing
/// manager: without one they would be black. They have a connection and a thread of their own, and are off
/// the screen with the first press on one of them, however busy the rest of the program is; with the program
/// they go at once.
class InputCover {
 public:
  /// Covers nothing yet. Where the system gives no thread, or the server no transparent window, it never
  /// will.
  InputCover();
  InputCover(const InputCover&) = delete;
  InputCover& operator=(const InputCover&) = delete;
  ~InputCover();

  /// Whether it can cover anything.
  [[nodiscard]] bool isAble() const { return thread_.joinable(); }
  /// Covers these parts of the desktop and no others, in pixels; again, too, after a press has ended it.
  void setParts(const std::vector<xcb_rectangle_t>& parts);

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };
  [[nodiscard]] bool findVisual();
  [[nodiscard]] bool watchPresses();
  [[nodiscard]] xcb_window_t makeWindow(const xcb_rectangle_t& part);
  void waitForPress();
  [[nodiscard]] bool isPointerOnCover();

  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  xcb_visualid_t visual_ = XCB_NONE;
  xcb_colormap_t colors_ = XCB_NONE;
  xcb_atom_t type_ = XCB_ATOM_NONE;
  xcb_atom_t menu_ = XCB_ATOM_NONE;
  std::mutex mutex_;
  std::vector<xcb_window_t> windows_;  ///< guarded by the mutex
  std::thread thread_;
};

}  // namespace vistrel::x11
