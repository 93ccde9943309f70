#include "linux/x11/RawPresses.h"

#include <xcb/xinput.h>

#include <tuple>
#include <utility>

namespace vistrel::x11 {

namespace {

// From this version on raw events come although somebody grabs the pointer.
constexpr std::uint16_t kMajorVersion = 2;
constexpr std::uint16_t kMinorVersion = 2;

struct OneMask {
  xcb_input_event_mask_t head;
  std::uint32_t mask;
};

}  // namespace

xcb_void_cookie_t selectRawPresses(xcb_connection_t* connection, Watching watching) {
  constexpr std::uint32_t kRawPresses = XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS;
  const OneMask selection = {{XCB_INPUT_DEVICE_ALL_MASTER, 1}, watching == Watching::On ? kRawPresses : 0};
  return xcb_input_xi_select_events_checked(connection, rootOf(connection), 1, &selection.head);
}

RawPresses::RawPresses(X11Connection& connection) : connection_(connection) {
  const auto* data =
      connection_.isOpen() ? xcb_get_extension_data(connection_.get(), &xcb_input_id) : nullptr;
  if (!data || data->present == 0) return;
  const auto cookie = xcb_input_xi_query_version(connection_.get(), kMajorVersion, kMinorVersion);
  if (connection_.wait(xcb_input_xi_query_version_reply, cookie)) extension_ = data->major_opcode;
}

RawPresses::~RawPresses() { setHandler({}); }

void RawPresses::setHandler(Handler handler) {
  handler_ = std::move(handler);
  const bool isWanted = handler_ && extension_ != 0;
  if (isWanted == (subscription_ != nullptr)) return;
  subscription_ = isWanted ? connection_.subscribe(X11Connection::Delivery::FromMainLoop,
                                                   [this](const auto& event) { eventCame(event); })
                           : nullptr;
  select(isWanted ? Watching::On : Watching::Off);
}

void RawPresses::select(Watching watching) {
  // Waited for: the server takes its clients in no order, and the next press must not get ahead.
  std::ignore = connection_.succeeds(selectRawPresses(connection_.get(), watching));
}

void RawPresses::eventCame(const xcb_generic_event_t& event) {
  const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
  if ((generic.response_type & 0x7FU) != XCB_GE_GENERIC || generic.extension != extension_) return;
  if (generic.event_type != XCB_INPUT_RAW_BUTTON_PRESS) return;
  const auto& press = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
  const auto button = press.detail;
  if (isWheel(button)) return;
  const auto handler = handler_;
  if (handler) handler(locate(static_cast<int>(button), press.time));
}

RawPress RawPresses::locate(int button, xcb_timestamp_t time) {
  const auto cookie = xcb_query_pointer(connection_.get(), connection_.root());
  const auto pointer = connection_.wait(xcb_query_pointer_reply, cookie);
  return pointer ? RawPress{button, time, pointer->root_x, pointer->root_y} : RawPress{button, time};
}

}  // namespace vistrel::x11
