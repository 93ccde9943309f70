#include "linux/keyboard/X11Keyboard.h"

#include "base/KeyCodes.h"
#include "linux/keyboard/DesktopShortcuts.h"

namespace vistrel::keyboard {

namespace {

/// The window with the input focus if it is one of this connection's, the root where no window has it, else
/// none.
xcb_window_t focusedWindowOf(xcb_connection_t* connection, xcb_window_t root) {
  const xcb_window_t focus = x11::focusedWindow(connection);
  if (focus == XCB_INPUT_FOCUS_NONE || focus == XCB_INPUT_FOCUS_POINTER_ROOT) return root;
  const xcb_setup_t* setup = xcb_get_setup(connection);
  const bool isOurs = (focus & ~setup->resource_id_mask) == setup->resource_id_base;
  return isOurs ? focus : xcb_window_t{XCB_NONE};
}

}  // namespace

X11Keyboard::X11Keyboard(x11::X11Connection& connection, xcb_connection_t* toolkit)
    : connection_(connection), toolkit_(toolkit), keymap_(connection) {}

std::optional<std::string> X11Keyboard::displayCharacter(std::uint16_t keyCode) {
  const auto evdev = evdevFromVirtualKeyCode(keyCode);
  // Event code 0 is no key: asked nonetheless, for a keyboard without keymap answers nothing at all.
  return keymap_.text(evdev.value_or(0));
}

std::optional<std::vector<backend::HotKeyCombination>> X11Keyboard::symbolicHotKeys() {
  return readDesktopShortcuts(keymap_);
}

void X11Keyboard::beep() {
  constexpr std::int8_t kUsualVolume = 0;
  xcb_bell(connection_.get(), kUsualVolume);
  connection_.flush();
}

bool X11Keyboard::setKeyboardCaptured(bool isCaptured) {
  if (!toolkit_) return false;
  if (isCaptured) return isCaptured_ = capture();
  isCaptured_ = false;
  xcb_ungrab_keyboard(toolkit_, XCB_CURRENT_TIME);
  xcb_flush(toolkit_);
  return true;
}

void X11Keyboard::toolkitGaveBack() {
  if (isCaptured_) capture();
}

bool X11Keyboard::capture() {
  const xcb_window_t focused = focusedWindowOf(toolkit_, connection_.root());
  if (focused == XCB_NONE) return false;
  // On the focused window itself, so that the focus is not seen to leave it. Owner events: what our windows
  // would get they still get, and nobody else gets anything.
  const auto cookie =
      xcb_grab_keyboard(toolkit_, 1, focused, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  const x11::Reply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(toolkit_, cookie, nullptr));
  return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

}  // namespace vistrel::keyboard
