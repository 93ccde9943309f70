#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <memory>

#include "linux/x11/X11Connection.h"

namespace vistrel::x11 {

/// A press of a mouse button anywhere on the desktop, whoever gets it.
struct RawPress {
  int button = 1;                           ///< 1 left, 2 middle, 3 right; the wheel's turns are not told
  xcb_timestamp_t time = XCB_CURRENT_TIME;  ///< the same as that of the event of the window that gets it
  int x = 0;  ///< pixels on the root window; where the pointer was when it was asked for
  int y = 0;
};

/// Whether a button that the server tells of is a turn of the wheel, which is no press.
[[nodiscard]] constexpr bool isWheel(std::uint32_t button) { return button >= 4 && button <= 7; }

/// Has the server tell `connection` of the presses of all pointers (XI_RawButtonPress), or of none any more.
/// XInput 2.2 or later was asked for on it before.
enum class Watching { Off, On };
[[nodiscard]] xcb_void_cookie_t selectRawPresses(xcb_connection_t* connection, Watching watching);

/// Watches every press on the desktop (XInput 2), only while somebody listens. Main thread only.
class RawPresses {
 public:
  explicit RawPresses(X11Connection& connection);
  RawPresses(const RawPresses&) = delete;
  RawPresses& operator=(const RawPresses&) = delete;
  ~RawPresses();

  /// Who is told, from the main loop; an empty function ends the watching.
  using Handler = std::function<void(const RawPress&)>;
  void setHandler(Handler handler);

 private:
  void select(Watching watching);
  void eventCame(const xcb_generic_event_t& event);
  [[nodiscard]] RawPress locate(int button, xcb_timestamp_t time);

  X11Connection& connection_;
  std::uint8_t extension_ = 0;
  Handler handler_;
  std::shared_ptr<X11Connection::Handler> subscription_;
};

}  // namespace vistrel::x11
