#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>

namespace vistrel::x11 {

/// Frees what the X library allocated.
struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using Reply = std::unique_ptr<T, Free>;

/// The questions that more than one room asks an X server. Each waits for the answer, and leaves the events
/// that came with it in the library's queue.
[[nodiscard]] xcb_window_t rootOf(xcb_connection_t* connection);
/// `XCB_ATOM_NONE` when the server does not answer.
[[nodiscard]] xcb_atom_t atomOf(xcb_connection_t* connection, const char* name);
/// The window with the input focus as the core protocol tells it: `XCB_INPUT_FOCUS_NONE` or
/// `XCB_INPUT_FOCUS_POINTER_ROOT` where no window has it.
[[nodiscard]] xcb_window_t focusedWindow(xcb_connection_t* connection);
/// The window that holds the selection of that name, as a service of the desktop does while it is there;
/// `XCB_NONE` without one.
[[nodiscard]] xcb_window_t ownerOf(xcb_connection_t* connection, const char* selection);
[[nodiscard]] bool isOwned(xcb_connection_t* connection, const char* selection);
/// `XCB_MAP_STATE_UNMAPPED`, `XCB_MAP_STATE_UNVIEWABLE` or `XCB_MAP_STATE_VIEWABLE`; none without such a
/// window.
[[nodiscard]] std::optional<std::uint8_t> mapStateOf(xcb_connection_t* connection, xcb_window_t window);
/// Whether the server is one for X11 programs in a Wayland session (XWayland), which knows where the pointer
/// is and what is pressed only while it is over a window of such a program.
[[nodiscard]] bool isXWayland(xcb_connection_t* connection);

/// Sends the window manager a wish for a window, or for the desktop where that is the root, as the Extended
/// Window Manager Hints have it: a message to the root window, sent at once.
void askManager(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t wish,
                const std::array<std::uint32_t, 4>& data);

}  // namespace vistrel::x11
