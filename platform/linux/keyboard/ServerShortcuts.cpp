#include "linux/keyboard/ServerShortcuts.h"

#include "base/KeyCodes.h"
#include "linux/x11/Requests.h"

namespace vistrel::keyboard {

namespace {

using Combinations = std::vector<backend::HotKeyCombination>;

constexpr std::uint32_t kModifierSets = 16;
constexpr std::uint32_t kHighestEvdevCode = 247;

std::uint32_t modifierSet(std::uint32_t index) {
  return ((index & 1U) ? cmdKey : 0) | ((index & 2U) ? shiftKey : 0) | ((index & 4U) ? optionKey : 0) |
         ((index & 8U) ? controlKey : 0);
}

/// Tries on one connection; the answers are waited for when all is asked. Nobody else is refused because of
/// them.
class Attempts {
 public:
  explicit Attempts(xcb_connection_t* connection) : connection_(connection), root_(x11::rootOf(connection)) {
    xcb_grab_server(connection_);
  }

  void add(backend::HotKeyCombination combination, xcb_keycode_t key, std::uint16_t mask) {
    const auto cookie =
        xcb_grab_key_checked(connection_, 1, root_, mask, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    xcb_ungrab_key(connection_, key, root_, mask);
    attempts_.emplace_back(combination, cookie);
  }
  [[nodiscard]] Combinations refused() const {
    xcb_ungrab_server(connection_);
    xcb_flush(connection_);
    Combinations result;
    for (const auto& [combination, cookie] : attempts_) {
      const x11::Reply<xcb_generic_error_t> error(xcb_request_check(connection_, cookie));
      if (error && error->error_code == XCB_ACCESS) result.push_back(combination);
    }
    return result;
  }

 private:
  xcb_connection_t* connection_;
  xcb_window_t root_;
  std::vector<std::pair<backend::HotKeyCombination, xcb_void_cookie_t>> attempts_;
};

/// The sets of modifiers with which somebody has taken a key or other.
Combinations takenSets(xcb_connection_t* connection, const ModifierMap& modifiers) {
  Attempts attempts(connection);
  for (std::uint32_t index = 0; index < kModifierSets; ++index) {
    const auto mask = modifiers.mask(modifierSet(index));
    if (mask) attempts.add({0, modifierSet(index)}, XCB_GRAB_ANY, *mask);
  }
  return attempts.refused();
}

}  // namespace

Combinations takenOnServer(xcb_connection_t* connection, const ModifierMap& modifiers,
                           const std::function<bool(backend::HotKeyCombination)>& isOurs) {
  // Grabs of a server do not nest, so that each round of attempts ends before the next one begins.
  const auto sets = takenSets(connection, modifiers);
  Attempts attempts(connection);
  for (const auto& [none, set] : sets) {
    for (std::uint32_t evdev = 1; evdev <= kHighestEvdevCode; ++evdev) {
      const auto code = virtualKeyCodeFromEvdev(evdev);
      if (!code || isOurs({*code, set})) continue;
      attempts.add({*code, set}, static_cast<xcb_keycode_t>(evdev + kX11KeyCodeOffset), *modifiers.mask(set));
    }
  }
  return attempts.refused();
}

}  // namespace vistrel::keyboard
