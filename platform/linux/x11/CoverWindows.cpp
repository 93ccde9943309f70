#include "linux/x11/CoverWindows.h"

#include <xcb/xinput.h>

#include <array>
#include <cstdint>

#include "linux/x11/RawPresses.h"
#include "linux/x11/Requests.h"

namespace vistrel::x11 {

namespace {

constexpr std::uint8_t kDepthWithAlpha = 32;
constexpr unsigned kEventKindBits = 0x7F;

// A turn of the wheel is none, and closes nothing.
bool isPress(const xcb_generic_event_t& event) {
  const auto kind = event.response_type & kEventKindBits;
  if (kind == XCB_BUTTON_PRESS) {
    return !isWheel(reinterpret_cast<const xcb_button_press_event_t&>(event).detail);
  }
  return kind == XCB_GE_GENERIC &&
         !isWheel(reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event).detail);
}

const xcb_screen_t& screenOf(xcb_connection_t* connection) {
  return *xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
}

xcb_visualid_t visualWithAlpha(const xcb_screen_t& screen) {
  for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0; xcb_depth_next(&depth)) {
    const auto visuals = xcb_depth_visuals_iterator(depth.data);
    if (depth.data->depth == kDepthWithAlpha && visuals.rem > 0) return visuals.data->visual_id;
  }
  return XCB_NONE;
}

}  // namespace

CoverWindows::CoverWindows() : connection_(xcb_connect(nullptr, nullptr)) {
  if (xcb_connection_has_error(connection_.get()) != 0 || !findVisual() || !watchPresses()) return;
  type_ = atomOf(connection_.get(), "_NET_WM_WINDOW_TYPE");
  menu_ = atomOf(connection_.get(), "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU");
  isAble_ = true;
}

bool CoverWindows::findVisual() {
  auto* connection = connection_.get();
  const auto& screen = screenOf(connection);
  visual_ = visualWithAlpha(screen);
  if (visual_ == XCB_NONE) return false;
  colors_ = xcb_generate_id(connection);
  xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, colors_, screen.root, visual_);
  return true;
}

// The press that falls on the cover while a menu of ours has the pointer goes to that menu: raw presses tell
// of it all the same. A touch is an ordinary press alone.
bool CoverWindows::watchPresses() {
  auto* connection = connection_.get();
  const auto* data = xcb_get_extension_data(connection, &xcb_input_id);
  if (!data || data->present == 0) return false;
  const auto version =
      xcb_input_xi_query_version(connection, XCB_INPUT_MAJOR_VERSION, XCB_INPUT_MINOR_VERSION);
  const Reply<xcb_input_xi_query_version_reply_t> reply(
      xcb_input_xi_query_version_reply(connection, version, nullptr));
  const Reply<xcb_generic_error_t> error(
      xcb_request_check(connection, selectRawPresses(connection, Watching::On)));
  return reply && !error;
}

// Called a menu: other kinds of unmanaged windows some compositors put below panels.
xcb_window_t CoverWindows::makeWindow(const xcb_rectangle_t& part) {
  auto* connection = connection_.get();
  constexpr std::uint32_t kTransparent = 0;
  constexpr std::uint32_t kUnmanaged = 1;
  const std::array<std::uint32_t, 5> values = {kTransparent, kTransparent, kUnmanaged,
                                               XCB_EVENT_MASK_BUTTON_PRESS, colors_};
  const auto window = xcb_generate_id(connection);
  xcb_create_window(connection, kDepthWithAlpha, window, screenOf(connection).root, part.x, part.y,
                    part.width, part.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual_,
                    XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK |
                        XCB_CW_COLORMAP,
                    values.data());
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, type_, XCB_ATOM_ATOM, 32, 1, &menu_);
  return window;
}

// A window for each part: the server of a Wayland session does not tell the compositor of a hole in one.
void CoverWindows::setParts(const std::vector<xcb_rectangle_t>& parts) {
  for (const xcb_window_t window : windows_) xcb_destroy_window(connection_.get(), window);
  windows_.clear();
  for (const auto& part : parts) {
    windows_.push_back(makeWindow(part));
    xcb_map_window(connection_.get(), windows_.back());
  }
  xcb_flush(connection_.get());
}

bool CoverWindows::isPointerOnCover() {
  auto* connection = connection_.get();
  const auto cookie = xcb_query_pointer(connection, screenOf(connection).root);
  const Reply<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(connection, cookie, nullptr));
  const auto* setup = xcb_get_setup(connection);
  return pointer && (pointer->child & ~setup->resource_id_mask) == setup->resource_id_base;
}

bool CoverWindows::hearPresses() {
  auto* connection = connection_.get();
  while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
    if (!isPress(*event) || !isPointerOnCover()) continue;
    for (const xcb_window_t window : windows_) xcb_unmap_window(connection, window);
    xcb_flush(connection);
  }
  return xcb_connection_has_error(connection) == 0;
}

}  // namespace vistrel::x11
