#pragma once

#include <gtest/gtest.h>
#include <xcb/xtest.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "base/KeyCodes.h"
#include "linux/keyboard/HotKeyGrabs.h"
#include "linux/keyboard/X11Keyboard.h"
#include "linux/x11/X11Connection.h"
#include "simulated/SimulatedDesktop.h"
#include "tests/unit/linux/PollReactor.h"

// Against a real X server, the one of DISPLAY; its keyboard is changed at will.
namespace vistrel::x11 {

using keyboard::HotKeyGrabs;
using keyboard::X11Keyboard;
using Strings = std::vector<std::string>;

inline constexpr std::uint32_t kControlOption = controlKey | optionKey;

/// Keys and buttons as a user presses them, and a program in front that has its own grabs.
class User {
 public:
  User() : connection_(xcb_connect(nullptr, nullptr)) { xcb_xkb_use_extension(connection_, 1, 0); }
  ~User() { xcb_disconnect(connection_); }
  User(const User&) = delete;
  User& operator=(const User&) = delete;

  void key(std::uint32_t keyCode, std::uint8_t kind) {
    fake(kind, *evdevFromVirtualKeyCode(keyCode) + kX11KeyCodeOffset);
  }
  void down(std::uint32_t keyCode) { key(keyCode, XCB_KEY_PRESS); }
  void up(std::uint32_t keyCode) { key(keyCode, XCB_KEY_RELEASE); }
  void tap(std::uint32_t keyCode) { down(keyCode), up(keyCode); }
  void click(std::uint8_t button) {
    fake(XCB_BUTTON_PRESS, button);
    fake(XCB_BUTTON_RELEASE, button);
  }
  void point(std::int16_t x, std::int16_t y) {
    xcb_test_fake_input(connection_, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root(), x, y, 0);
    sync();
  }
  bool grabKey(std::uint32_t keyCode, std::uint16_t modifiers) {
    const auto code = static_cast<xcb_keycode_t>(*evdevFromVirtualKeyCode(keyCode) + kX11KeyCodeOffset);
    const auto cookie = xcb_grab_key_checked(connection_, 1, root(), modifiers, code, 1, 1);
    return Reply<xcb_generic_error_t>(xcb_request_check(connection_, cookie)) == nullptr;
  }
  void ungrabAll() {
    xcb_ungrab_key(connection_, XCB_GRAB_ANY, root(), XCB_MOD_MASK_ANY);
    xcb_ungrab_keyboard(connection_, XCB_CURRENT_TIME);
    sync();
  }
  xcb_window_t openWindow() {
    const auto window = xcb_generate_id(connection_);
    const std::uint32_t values[] = {1};
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root(), 100, 100, 200, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT, values);
    xcb_map_window(connection_, window);
    sync();
    return window;
  }
  /// Waits until the server has done all of it.
  void sync() {
    Reply<xcb_get_input_focus_reply_t>(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  }
  [[nodiscard]] xcb_connection_t* get() const { return connection_; }
  [[nodiscard]] xcb_window_t root() const {
    return xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
  }

 private:
  void fake(std::uint8_t kind, unsigned detail) {
    xcb_test_fake_input(connection_, kind, static_cast<std::uint8_t>(detail), XCB_CURRENT_TIME, XCB_NONE, 0,
                        0, 0);
    sync();
  }
  xcb_connection_t* connection_;
};

inline void setLayout(const std::string& layout) {
  ASSERT_EQ(std::system(("setxkbmap -option '' -layout " + layout).c_str()), 0);
}

class ServerTest : public ::testing::Test {
 protected:
  ServerTest() {
    setLayout("us");
    hear();
    EXPECT_TRUE(grabs.grab(kFence, {kVK_F12, cmdKey}));
  }
  ~ServerTest() override {
    unlock();
    setLayout("us");
  }

  void hear() {
    grabs.setHandler([this](std::uint32_t token, backend::HotKeyPhase phase) {
      heard.push_back((phase == backend::HotKeyPhase::Pressed ? "down " : "up ") + std::to_string(token));
    });
  }

  /// What was heard up to now: everything that came before a hot key pressed afterwards.
  Strings take() {
    user.down(kVK_Command);
    user.tap(kVK_F12);
    user.up(kVK_Command);
    EXPECT_TRUE(reactor.runUntil([&] { return !heard.empty() && heard.back() == "up 99"; }));
    Strings before = std::exchange(heard, {});
    if (before.size() >= 2) before.resize(before.size() - 2);
    return before;
  }
  void press(std::uint32_t keyCode) {
    user.down(kVK_Control);
    user.down(kVK_Option);
    user.tap(keyCode);
    user.up(kVK_Option);
    user.up(kVK_Control);
  }
  /// Control, Option and a key, held until it repeated itself; `meanwhile` is run when all are down.
  void hold(std::uint32_t keyCode, const std::function<void()>& meanwhile = [] {}) {
    ASSERT_EQ(std::system("xset r rate 20 100"), 0);
    int presses = 0;
    const auto count = connection.subscribe(X11Connection::Delivery::FromMainLoop, [&](const auto& event) {
      if (event.response_type == XCB_KEY_PRESS) ++presses;
    });
    for (const std::uint32_t each : {std::uint32_t{kVK_Control}, std::uint32_t{kVK_Option}, keyCode})
      user.down(each);
    meanwhile();
    EXPECT_TRUE(reactor.runUntil([&] { return presses > 3; }));
    // The modifiers go first.
    for (const std::uint32_t each : {std::uint32_t{kVK_Option}, std::uint32_t{kVK_Control}, keyCode})
      user.up(each);
    EXPECT_EQ(std::system("xset r rate"), 0);
  }
  void lock(std::uint8_t modifiers, std::uint8_t group) {
    xcb_xkb_latch_lock_state(user.get(), XCB_XKB_ID_USE_CORE_KBD, 0xFF, modifiers, 1, group, 0, 0, 0);
    xcb_flush(user.get());
    take();
  }
  void unlock() { lock(0, 0); }

  static constexpr std::uint32_t kFence = 99;
  desktop::PollReactor reactor;
  X11Connection connection{reactor};
  HotKeyGrabs grabs{connection};
  User user;
  X11Keyboard keyboard{connection, user.get(), grabs};
  Strings heard;
};

/// A simulated desktop with the keyboard or the hot keys of a real one.
class DesktopWithKeyboard final : public simulated::SimulatedDesktop {
 public:
  DesktopWithKeyboard() : SimulatedDesktop("") {}

  backend::HotKeys& hotKeys() override { return realHotKeys ? *realHotKeys : simulatedHotKeys; }
  backend::Keyboard& keyboard() override { return realKeyboard ? *realKeyboard : keys; }

  backend::Keyboard* realKeyboard = nullptr;
  backend::HotKeys* realHotKeys = nullptr;
};

}  // namespace vistrel::x11
