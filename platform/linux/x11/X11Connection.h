#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "linux/Reactor.h"
#include "linux/x11/Requests.h"

// For the kinds that `xkbKind` answers. The library's header uses a keyword of C++ as a name.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

namespace vistrel::x11 {

/// A connection of our own to the X server, apart from the toolkit's: it hears of our grabs, of outside
/// presses and of changes of the keyboard. Main thread only.
class X11Connection {
 public:
  /// Connects to the display of the environment. A connection that failed is not open, and does nothing.
  explicit X11Connection(desktop::Reactor& reactor);
  X11Connection(const X11Connection&) = delete;
  X11Connection& operator=(const X11Connection&) = delete;
  ~X11Connection();

  [[nodiscard]] bool isOpen() const;
  [[nodiscard]] xcb_connection_t* get() const { return connection_; }
  [[nodiscard]] xcb_window_t root() const { return root_; }
  [[nodiscard]] desktop::Reactor& reactor() const { return reactor_; }
  /// `XCB_ATOM_NONE` when the server does not answer.
  [[nodiscard]] xcb_atom_t atom(const char* name);
  /// The XKB kind of an event (XCB_XKB_…_NOTIFY); -1 for an event of another kind.
  [[nodiscard]] int xkbKind(const xcb_generic_event_t& event) const;

  using Handler = std::function<void(const xcb_generic_event_t&)>;
  /// `WhenRead`: at once, perhaps inside a call of somebody else: the handler takes note and no more.
  enum class Delivery { WhenRead, FromMainLoop };
  /// Has `handler` called for every event while the answer lives.
  [[nodiscard]] std::shared_ptr<Handler> subscribe(Delivery delivery, Handler handler);

  /// Waits for the answer to a request; null for an error.
  template <class T, class Cookie>
  [[nodiscard]] Reply<T> wait(T* (*take)(xcb_connection_t*, Cookie, xcb_generic_error_t**), Cookie cookie) {
    Reply<T> reply(take(connection_, cookie, nullptr));
    readEvents();
    return reply;
  }
  /// Waits for the outcome of a checked request.
  [[nodiscard]] bool succeeds(xcb_void_cookie_t cookie);
  /// Takes in events that have come, without waiting: those that came with an answer wake nobody up.
  void readEvents();
  /// Hands on what was read, in order; from the main loop only.
  void deliver();
  void flush() const { xcb_flush(connection_); }

 private:
  struct Subscriber {
    Delivery delivery;
    std::weak_ptr<Handler> handler;
  };
  void startXkb();
  void becameReadable();
  void deliverLater();
  void tell(Delivery delivery, const xcb_generic_event_t& event);

  desktop::Reactor& reactor_;
  xcb_connection_t* connection_;
  xcb_window_t root_ = XCB_NONE;
  int firstXkbEvent_ = -1;
  std::vector<Subscriber> subscribers_;
  std::deque<Reply<xcb_generic_event_t>> unheard_;
  std::unique_ptr<desktop::Registration> watch_;
  std::unique_ptr<desktop::Registration> delivery_;
};

}  // namespace vistrel::x11
