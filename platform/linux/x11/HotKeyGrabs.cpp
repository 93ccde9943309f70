#include "x11/HotKeyGrabs.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "carbon/KeyCodes.h"
#include "x11/Xkb.h"

namespace vistrel::x11 {

namespace {

constexpr unsigned kEventKindBits = 0x7F;
constexpr unsigned kKeyCodeOffset = 8;
constexpr unsigned kHighestKeyCode = 255;
/// A keyboard grabbed by a popup of ours takes the release away; a look this often goes unnoticed.
constexpr std::chrono::milliseconds kHeldKeyInterval(25);

std::optional<xcb_keycode_t> xKeyCode(std::uint32_t virtualKeyCode) {
  const auto evdev = evdevFromVirtualKeyCode(virtualKeyCode);
  if (!evdev || *evdev + kKeyCodeOffset > kHighestKeyCode) return std::nullopt;
  return static_cast<xcb_keycode_t>(*evdev + kKeyCodeOffset);
}

bool isDown(const xcb_query_keymap_reply_t& keys, xcb_keycode_t key) {
  return ((keys.keys[key / 8U] >> (key % 8U)) & 1U) != 0;
}

}  // namespace

HotKeyGrabs::HotKeyGrabs(X11Connection& connection)
    : connection_(connection), modifiers_(ModifierMap::read(connection)) {
  if (!connection_.isOpen()) return;
  // Without it a held key releases and presses itself again and again.
  const auto flag = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
  const auto cookie =
      xcb_xkb_per_client_flags(connection_.get(), XCB_XKB_ID_USE_CORE_KBD, flag, flag, 0, 0, 0);
  std::ignore = connection_.wait(xcb_xkb_per_client_flags_reply, cookie);
  subscription_ = connection_.subscribe(X11Connection::Delivery::FromMainLoop,
                                        [this](const auto& event) { eventCame(event); });
}

HotKeyGrabs::~HotKeyGrabs() {
  while (!entries_.empty()) release(entries_.back().token);
}

bool HotKeyGrabs::grab(std::uint32_t token, host::HotKeyCombination combination) {
  const auto key = xKeyCode(combination.keyCode);
  if (!key || !connection_.isOpen()) return false;
  const Entry entry{token, combination.modifiers, *key, false};
  if (!isShared(entry) && !take(entry)) return false;
  entries_.push_back(entry);
  return true;
}

void HotKeyGrabs::release(std::uint32_t token) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.token == token; });
  if (found == entries_.end()) return;
  const Entry entry = *found;
  entries_.erase(found);
  if (!isShared(entry)) giveBack(entry);
}

void HotKeyGrabs::setHandler(std::function<void(std::uint32_t, host::HotKeyPhase)> handler) {
  handler_ = std::move(handler);
}

bool HotKeyGrabs::isShared(const Entry& entry) const {
  return std::any_of(entries_.begin(), entries_.end(), [&](const Entry& other) {
    return other.key == entry.key && other.modifiers == entry.modifiers;
  });
}

bool HotKeyGrabs::take(const Entry& entry) {
  const auto mask = modifiers_.mask(entry.modifiers);
  if (!mask) return false;
  std::vector<xcb_void_cookie_t> cookies;
  for (const auto locks : modifiers_.lockVariants()) {
    cookies.push_back(xcb_grab_key_checked(connection_.get(), 1, connection_.root(), *mask | locks, entry.key,
                                           XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
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
    xcb_ungrab_key(connection_.get(), entry.key, connection_.root(), *mask | locks);
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

void HotKeyGrabs::keyPressed(const xcb_key_press_event_t& event) {
  const auto snapshot = entries_;
  for (const auto& [token, modifiers, key, wasHeld] : snapshot) {
    const auto isPressed =
        event.detail == key && modifiers_.mask(modifiers) == (event.state & modifiers_.significant());
    if (!isPressed || wasHeld) continue;
    for (auto& entry : entries_) entry.isHeld = entry.isHeld || entry.token == token;
    watchHeldKeys();
    tell(token, host::HotKeyPhase::Pressed);
  }
}

void HotKeyGrabs::keyReleased(xcb_keycode_t key) {
  const auto snapshot = entries_;
  // Whatever the modifiers: they may have been let go of first.
  for (auto& entry : entries_) entry.isHeld = entry.isHeld && entry.key != key;
  watchHeldKeys();
  for (const auto& entry : snapshot) {
    if (entry.key == key && entry.isHeld) tell(entry.token, host::HotKeyPhase::Released);
  }
}

void HotKeyGrabs::watchHeldKeys() {
  const bool isAnyHeld =
      std::any_of(entries_.begin(), entries_.end(), [](const Entry& entry) { return entry.isHeld; });
  heldWatch_ =
      isAnyHeld ? connection_.reactor().after(kHeldKeyInterval, [this] { checkHeldKeys(); }) : nullptr;
}

void HotKeyGrabs::checkHeldKeys() {
  const auto keys = connection_.wait(xcb_query_keymap_reply, xcb_query_keymap(connection_.get()));
  // What happened before the answer comes first: a repeat that is heard after its release would be a new
  // press.
  connection_.deliver();
  const auto snapshot = entries_;
  for (const auto& entry : snapshot) {
    if (entry.isHeld && (!keys || !isDown(*keys, entry.key))) keyReleased(entry.key);
  }
  watchHeldKeys();
}

void HotKeyGrabs::renew() {
  renewal_.reset();
  const auto present = ModifierMap::read(connection_);
  if (present == modifiers_) return;
  for (const auto& entry : entries_) giveBack(entry);
  modifiers_ = present;
  for (const auto& entry : entries_) std::ignore = take(entry);
}

void HotKeyGrabs::tell(std::uint32_t token, host::HotKeyPhase phase) const {
  // A copy: the handler may set another.
  const auto handler = handler_;
  if (handler) handler(token, phase);
}

}  // namespace vistrel::x11
