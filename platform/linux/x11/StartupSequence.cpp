#include "linux/x11/StartupSequence.h"

#include <algorithm>
#include <cstring>

namespace vistrel::x11 {

namespace {

std::string removal(const std::string& id) {
  std::string text = "remove: ID=\"";
  for (const char c : id) {
    if (c == '"' || c == '\\') text += '\\';
    text += c;
  }
  return text + '"';
}

}  // namespace

// The text goes in pieces to the root window, with its closing zero; a window of ours holds them together.
void endStartupSequence(X11Connection& connection, const std::string& id) {
  if (!connection.isOpen() || id.empty()) return;
  const std::string text = removal(id);
  const auto window = xcb_generate_id(connection.get());
  xcb_create_window(connection.get(), XCB_COPY_FROM_PARENT, window, connection.root(), -1, -1, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
  xcb_client_message_event_t message = {};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 8;
  message.window = window;
  message.type = connection.atom("_NET_STARTUP_INFO_BEGIN");
  constexpr std::size_t kPiece = sizeof message.data.data8;
  for (std::size_t sent = 0; sent <= text.size(); sent += kPiece) {
    std::memset(message.data.data8, 0, kPiece);
    std::memcpy(message.data.data8, text.data() + sent, std::min(kPiece, text.size() - sent));
    xcb_send_event(connection.get(), 0, connection.root(), XCB_EVENT_MASK_PROPERTY_CHANGE,
                   reinterpret_cast<const char*>(&message));
    message.type = connection.atom("_NET_STARTUP_INFO");
  }
  xcb_destroy_window(connection.get(), window);
  connection.flush();
}

}  // namespace vistrel::x11
