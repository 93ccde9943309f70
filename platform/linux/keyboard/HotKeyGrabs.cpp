#include "linux/keyboard/HotKeyGrabs.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "base/KeyCodes.h"

namespace vistrel::keyboard {

namespace {

constexpr unsigned kEventKindBits = 0x7F;
constexpr unsigned kHighestKeyCode = 255;
/// A keyboard grabbed by a popup of ours takes the release away; a look this often goes unnoticed.
constexpr std::chrono::milliseconds kHeldKeyInterval(25);

std::optional<xcb_keycode_t> xKeyCode(std::uint32_t virtualKeyCode) {
  const auto evdev = evdevFromVirtualKeyCode(virtualKeyCode);
  if (!evdev || *evdev + kX11KeyCodeOffset > kHighestKeyCode) return std::nullopt;
  return static_cast<xcb_keycode_t>(*evdev + kX11KeyCodeOffset);
}

bool isDown(const xcb_query_keymap_reply_t& keys, xcb_keycode_t key) {
  return ((keys.keys[key / 8U] >> (key % 8U)) & 1U) != 0;
}

}  // namespace

HotKeyGrabs::HotKeyGrabs(x11::X11Connection& connection)
    : connection_(connection), modifiers_(ModifierMap::read(connection)) {
  if (!connection_.isOpen()) return;
  // Without it a held key releases and presses itself again and again.
  const auto flag = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
  const auto cookie =
      xcb_xkb_per_client_flags(connection_.get(), XCB_XKB_ID_USE_CORE_KBD, flag, flag, 0, 0, 0);
  std::ignore = connection_.wait(xcb_xkb_per_client_flags_reply, cookie);
  subscription_ = connection_.subscribe(x11::X11Connection::Delivery::FromMainLoop,
                                        [this](const auto& event) { eventCame(event); });
}

HotKeyGrabs::~HotKeyGrabs() {
  while (!entries_.empty()) release(entries_.back().token);
}

bool HotKeyGrabs::grab(std::uint32_t token, backend::HotKeyCombination combination) {
  const auto code = xKeyCode(combination.keyCode);
  if (!code || !connection_.isOpen()) return false;
  Entry entry{token, combination.modifiers, *code};
  entry.isTaken = isShared(entry) || take(entry);
  if (!entry.isTaken) return false;
  const auto keys = keysDown();
  if (keys && isDown(*keys, entry.code)) entry.state = Key::DownBefore;
  entries_.push_back(entry);
  watchHeldKeys();
  return true;
}

void HotKeyGrabs::release(std::uint32_t token) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.token == token; });
  if (found == entries_.end()) return;
  const Entry entry = *found;
  entries_.erase(found);
  if (entry.isTaken && !isShared(entry)) giveBack(entry);
}

void HotKeyGrabs::setHandler(std::function<void(std::uint32_t, backend::HotKeyPhase)> handler) {
  handler_ = std::move(handler);
}

bool HotKeyGrabs::isShared(const Entry& entry) const {
  return std::any_of(entries_.begin(), entries_.end(), [&](const Entry& other) {
    return other.isTaken && other.code == entry.code && other.modifiers == entry.modifiers;
  });
}

bool HotKeyGrabs::holds(backend::HotKeyCombination combination) const {
  const auto code = xKeyCode(combination.keyCode);
  return code && isShared({0, combination.modifiers, *code});
}

bool HotKeyGrabs::take(const Entry& entry) {
  const auto mask = modifiers_.mask(entry.modifiers);
  if (!mask) return false;
  std::vector<xcb_void_cookie_t> cookies;
  for (const auto locks : modifiers_.lockVariants()) {
    cookies.push_back(xcb_grab_key_checked(connection_.get(), 1, connection_.root(), *mask | locks,
                                           entry.code, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
  }
  bool isWhole = true;
  for (const auto cookie : cookies) isWhole = connection_.succeeds(cookie) && isWhole;
  if (!isWhole) giveBack(entry);
  return isWhole;
}

void HotKeyGrabs::giveBack(const Entry& entry) {
  const auto mask = modifiers_.mask(entry.modifiers);
  if (!mask) return;
  for (const auto locks : modifiers_.lockVariants()) {
    xcb_ungrab_key(connection_.get(), entry.code, connection_.root(), *mask | locks);
  }
  connection_.flush();
}

void HotKeyGrabs::eventCame(const xcb_generic_event_t& event) {
  const auto kind = event.response_type & kEventKindBits;
  const auto xkbKind = connection_.xkbKind(event);
  if (kind == XCB_KEY_PRESS) {
    keyPressed(reinterpret_cast<const xcb_key_press_event_t&>(event));
  } else if (kind == XCB_KEY_RELEASE) {
    keyReleased(reinterpret_cast<const xcb_key_release_event_t&>(event).detail);
  } else if (xkbKind == XCB_XKB_NEW_KEYBOARD_NOTIFY || xkbKind == XCB_XKB_MAP_NOTIFY) {
    // A change of the layout comes in several events; one look afterwards is enough.
    if (!renewal_) renewal_ = connection_.reactor().after(std::chrono::milliseconds(0), [this] { renew(); });
  }
}

bool HotKeyGrabs::isPressedBy(const Entry& entry, const xcb_key_press_event_t& event) const {
  return entry.isTaken && event.detail == entry.code &&
         modifiers_.mask(entry.modifiers) == (event.state & modifiers_.significant());
}

bool HotKeyGrabs::offer(const xcb_generic_event_t& event) {
  const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(event);
  const auto kind = event.response_type & kEventKindBits;
  const auto isAny = [&](auto test) { return std::any_of(entries_.begin(), entries_.end(), test); };
  if (kind == XCB_KEY_PRESS && isAny([&](const Entry& entry) { return isPressedBy(entry, key); })) {
    keyPressed(key);
    return true;
  }
  const auto isHeld = [&](const Entry& entry) { return entry.code == key.detail && entry.state != Key::Up; };
  if (kind != XCB_KEY_RELEASE || !isAny(isHeld)) return false;
  // Other connections hear of a release before each repeat: the key itself tells.
  checkHeldKeys();
  return true;
}

void HotKeyGrabs::keyPressed(const xcb_key_press_event_t& event) {
  const auto snapshot = entries_;
  for (const auto& pressed : snapshot) {
    if (pressed.state != Key::Up || !isPressedBy(pressed, event)) continue;
    for (auto& entry : entries_) {
      if (entry.token == pressed.token) entry.state = Key::Held;
    }
    watchHeldKeys();
    tell(pressed.token, backend::HotKeyPhase::Pressed);
  }
}

void HotKeyGrabs::keyReleased(xcb_keycode_t code) {
  const auto snapshot = entries_;
  // Whatever the modifiers: they may have been let go of first.
  for (auto& entry : entries_) {
    if (entry.code == code) entry.state = Key::Up;
  }
  watchHeldKeys();
  for (const auto& entry : snapshot) {
    if (entry.code == code && entry.state == Key::Held) tell(entry.token, backend::HotKeyPhase::Released);
  }
}

void HotKeyGrabs::watchHeldKeys() {
  const bool isAnyDown = std::any_of(entries_.begin(), entries_.end(),
                                     [](const Entry& entry) { return entry.state != Key::Up; });
  heldWatch_ =
      isAnyDown ? connection_.reactor().after(kHeldKeyInterval, [this] { checkHeldKeys(); }) : nullptr;
}

x11::Reply<xcb_query_keymap_reply_t> HotKeyGrabs::keysDown() {
  return connection_.wait(xcb_query_keymap_reply, xcb_query_keymap(connection_.get()));
}

void HotKeyGrabs::checkHeldKeys() {
  const auto keys = keysDown();
  // What happened before the answer comes first: a repeat that is heard after its release would be a new
  // press.
  connection_.deliver();
  const auto snapshot = entries_;
  for (const auto& entry : snapshot) {
    if (entry.state != Key::Up && (!keys || !isDown(*keys, entry.code))) keyReleased(entry.code);
  }
  watchHeldKeys();
}

void HotKeyGrabs::renew() {
  renewal_.reset();
  const auto present = ModifierMap::read(connection_);
  if (present == modifiers_) return;
  for (const auto& entry : entries_) giveBack(entry);
  modifiers_ = present;
  for (auto& entry : entries_) entry.isTaken = take(entry);
}

void HotKeyGrabs::tell(std::uint32_t token, backend::HotKeyPhase phase) const {
  // A copy: the handler may set another.
  const auto handler = handler_;
  if (handler) handler(token, phase);
}

}  // namespace vistrel::keyboard
