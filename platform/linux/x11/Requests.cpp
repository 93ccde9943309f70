#include "linux/x11/Requests.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace vistrel::x11 {

xcb_window_t rootOf(xcb_connection_t* connection) {
  return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

xcb_atom_t atomOf(xcb_connection_t* connection, const char* name) {
  const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
  const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_window_t focusedWindow(xcb_connection_t* connection) {
  const auto cookie = xcb_get_input_focus(connection);
  const Reply<xcb_get_input_focus_reply_t> reply(xcb_get_input_focus_reply(connection, cookie, nullptr));
  return reply ? reply->focus : xcb_window_t{XCB_INPUT_FOCUS_NONE};
}

xcb_window_t ownerOf(xcb_connection_t* connection, const char* selection) {
  const auto cookie = xcb_get_selection_owner(connection, atomOf(connection, selection));
  const Reply<xcb_get_selection_owner_reply_t> reply(
      xcb_get_selection_owner_reply(connection, cookie, nullptr));
  return reply ? reply->owner : XCB_NONE;
}

bool isOwned(xcb_connection_t* connection, const char* selection) {
  return ownerOf(connection, selection) != XCB_NONE;
}

std::optional<std::uint8_t> mapStateOf(xcb_connection_t* connection, xcb_window_t window) {
  const auto cookie = xcb_get_window_attributes(connection, window);
  const Reply<xcb_get_window_attributes_reply_t> reply(
      xcb_get_window_attributes_reply(connection, cookie, nullptr));
  return reply ? std::optional(reply->map_state) : std::nullopt;
}

// The extension is there from version 23.1 on.
bool isXWayland(xcb_connection_t* connection) {
  constexpr std::string_view kExtension = "XWAYLAND";
  const auto cookie = xcb_query_extension(connection, kExtension.size(), kExtension.data());
  const Reply<xcb_query_extension_reply_t> reply(xcb_query_extension_reply(connection, cookie, nullptr));
  const char* session = std::getenv("WAYLAND_DISPLAY");
  return (reply && reply->present) || (session && *session);
}

void askManager(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t wish,
                const std::array<std::uint32_t, 4>& data) {
  xcb_client_message_event_t message = {};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = wish;
  std::copy(data.begin(), data.end(), message.data.data32);
  xcb_send_event(connection, 0, rootOf(connection),
                 XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
  xcb_flush(connection);
}

}  // namespace vistrel::x11
