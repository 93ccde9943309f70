#include "linux/keyboard/X11Keyboard.h"

#include <algorithm>
#include <chrono>
#include <iterator>

#include "base/KeyCodes.h"
#include "linux/keyboard/DesktopShortcuts.h"
#include "linux/keyboard/ServerShortcuts.h"

namespace vistrel::keyboard {

namespace {

// As soon as a person who lets go of a key can want anything else.
constexpr std::chrono::milliseconds kHeldKeyInterval(25);

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

X11Keyboard::X11Keyboard(x11::X11Connection& connection, xcb_connection_t* toolkit,
                         const HotKeyGrabs& hotKeys)
    : connection_(connection), toolkit_(toolkit), hotKeys_(hotKeys), keymap_(connection) {}

std::optional<std::string> X11Keyboard::displayCharacter(std::uint16_t keyCode) {
  const auto evdev = evdevFromVirtualKeyCode(keyCode);
  // Event code 0 is no key: asked nonetheless, for a keyboard without keymap answers nothing at all.
  return keymap_.text(evdev.value_or(0));
}

std::optional<std::vector<backend::HotKeyCombination>> X11Keyboard::symbolicHotKeys() {
  auto told = readDesktopShortcuts(keymap_);
  if (told.areAll) return std::move(told.hotKeys);
  if (!toolkit_ || !connection_.isOpen()) return std::nullopt;
  const auto isOurs = [this](auto combination) { return hotKeys_.holds(combination); };
  const auto seen = takenOnServer(toolkit_, ModifierMap::read(connection_), isOurs);
  told.hotKeys.insert(told.hotKeys.end(), seen.begin(), seen.end());
  return std::move(told.hotKeys);
}

void X11Keyboard::beep() {
  constexpr std::int8_t kUsualVolume = 0;
  xcb_bell(connection_.get(), kUsualVolume);
  connection_.flush();
}

bool X11Keyboard::setKeyboardCaptured(bool isCaptured) {
  if (!toolkit_) return false;
  givingBack_.reset();
  if (isCaptured) return isCaptured_ = capture();
  isCaptured_ = false;
  giveBack();
  return true;
}

// Not while a key is down: a binding of the window manager's would act on its next repeat.
void X11Keyboard::giveBack() {
  if (isAnyKeyDown()) {
    givingBack_ = connection_.reactor().after(kHeldKeyInterval, [this] { giveBack(); });
    return;
  }
  givingBack_.reset();
  xcb_ungrab_keyboard(toolkit_, XCB_CURRENT_TIME);
  xcb_flush(toolkit_);
}

bool X11Keyboard::isAnyKeyDown() {
  const auto down = connection_.wait(xcb_query_keymap_reply, xcb_query_keymap(connection_.get()));
  return down &&
         std::any_of(std::begin(down->keys), std::end(down->keys), [](auto keys) { return keys != 0; });
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
