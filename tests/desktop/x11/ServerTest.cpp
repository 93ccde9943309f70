#include <gtest/gtest.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "carbon/KeyCodes.h"
#include "linux/x11/HotKeyGrabs.h"
#include "linux/x11/RawPresses.h"
#include "linux/x11/X11Keyboard.h"
#include "linux/x11/Xkb.h"
#include "tests/unit/camera/PollReactor.h"

// Against a real X server, the one of DISPLAY; its keyboard is changed at will.
namespace vistrel::x11 {
namespace {

using host::HotKeyPhase;
using Strings = std::vector<std::string>;

constexpr unsigned kKeyCodeOffset = 8;
constexpr std::uint32_t kCommand = 0x100;
constexpr std::uint32_t kControlOption = 0x1800;

/// Keys and buttons as a user presses them, and a program in front that has its own grabs.
class User {
 public:
  User() : connection_(xcb_connect(nullptr, nullptr)) { xcb_xkb_use_extension(connection_, 1, 0); }
  ~User() { xcb_disconnect(connection_); }
  User(const User&) = delete;
  User& operator=(const User&) = delete;

  void key(std::uint32_t keyCode, std::uint8_t kind) {
    fake(kind, *evdevFromVirtualKeyCode(keyCode) + kKeyCodeOffset);
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
    const auto code = static_cast<xcb_keycode_t>(*evdevFromVirtualKeyCode(keyCode) + kKeyCodeOffset);
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

void setLayout(const std::string& layout) {
  ASSERT_EQ(std::system(("setxkbmap -option '' -layout " + layout).c_str()), 0);
}

class ServerTest : public ::testing::Test {
 protected:
  ServerTest() {
    setLayout("us");
    grabs.setHandler([this](std::uint32_t token, HotKeyPhase phase) {
      heard.push_back((phase == HotKeyPhase::Pressed ? "down " : "up ") + std::to_string(token));
    });
    EXPECT_TRUE(grabs.grab(kFence, {kVK_F12, kCommand}));
  }
  ~ServerTest() override {
    unlock();
    setLayout("us");
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
  void lock(std::uint8_t modifiers, std::uint8_t group) {
    xcb_xkb_latch_lock_state(user.get(), XCB_XKB_ID_USE_CORE_KBD, 0xFF, modifiers, 1, group, 0, 0, 0);
    xcb_flush(user.get());
    take();
  }
  void unlock() { lock(0, 0); }

  static constexpr std::uint32_t kFence = 99;
  capture::PollReactor reactor;
  X11Connection connection{reactor};
  HotKeyGrabs grabs{connection};
  User user;
  X11Keyboard keyboard{connection, user.get()};
  Strings heard;
};

TEST_F(ServerTest, hearsAPressOnceWhateverIsLocked) {
  constexpr std::uint8_t kCaps = XCB_MOD_MASK_LOCK;
  constexpr std::uint8_t kNum = XCB_MOD_MASK_2;
  struct {
    const char* layout;
    std::uint8_t locks;
    std::uint8_t group;
  } const rows[] = {
      {"us", 0, 0},    {"us", kCaps, 0},           {"us", kNum, 0}, {"us", kCaps | kNum, 0}, {"de", 0, 0},
      {"us,ru", 0, 1}, {"us,ru", kCaps | kNum, 1}, {"fr", kNum, 0}};
  ASSERT_TRUE(grabs.grab(1, {kVK_ANSI_Z, kControlOption}));
  ASSERT_TRUE(grabs.grab(2, {kVK_ANSI_Z, kCommand}));
  for (const auto& row : rows) {
    setLayout(row.layout);
    lock(row.locks, row.group);
    press(kVK_ANSI_Z);
    user.tap(kVK_ANSI_Z);
    EXPECT_EQ(take(), (Strings{"down 1", "up 1"})) << row.layout << " " << int{row.locks};
    unlock();
  }
  grabs.release(1);
  press(kVK_ANSI_Z);
  EXPECT_EQ(take(), Strings{});
}

TEST_F(ServerTest, tellsAReleaseByItsKeyAlone) {
  ASSERT_EQ(std::system("xset r rate 20 100"), 0);
  ASSERT_TRUE(grabs.grab(1, {kVK_ANSI_J, kControlOption}));
  int presses = 0;
  const auto count = connection.subscribe(X11Connection::Delivery::FromMainLoop, [&](const auto& event) {
    if (event.response_type == XCB_KEY_PRESS) ++presses;
  });
  user.down(kVK_Control);
  user.down(kVK_Option);
  user.down(kVK_ANSI_J);
  EXPECT_TRUE(reactor.runUntil([&] { return presses > 3; }));
  user.up(kVK_Option);
  user.up(kVK_Control);
  user.up(kVK_ANSI_J);
  EXPECT_EQ(std::system("xset r rate"), 0);
  EXPECT_EQ(take(), (Strings{"down 1", "up 1"}));
}

TEST_F(ServerTest, findsAReleaseThatSomebodyElseGot) {
  ASSERT_TRUE(grabs.grab(1, {kVK_F5, 0}));
  user.down(kVK_F5);
  ASSERT_TRUE(reactor.runUntil([&] { return heard == Strings{"down 1"}; }));
  xcb_ungrab_keyboard(connection.get(), XCB_CURRENT_TIME);
  connection.flush();
  take();
  setLayout("de");
  user.up(kVK_F5);
  ASSERT_TRUE(reactor.runUntil([&] { return !heard.empty(); }));
  EXPECT_EQ(take(), Strings{"up 1"});
}

TEST_F(ServerTest, leavesATakenCombinationWholly) {
  constexpr std::uint16_t kMask = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
  ASSERT_TRUE(user.grabKey(kVK_F5, kMask | XCB_MOD_MASK_LOCK));
  EXPECT_FALSE(grabs.grab(1, {kVK_F5, kControlOption}));
  EXPECT_TRUE(connection.succeeds(xcb_no_operation_checked(connection.get())));
  EXPECT_TRUE(user.grabKey(kVK_F5, kMask));
  EXPECT_TRUE(user.grabKey(kVK_F5, kMask | XCB_MOD_MASK_2));
  user.ungrabAll();
  EXPECT_TRUE(grabs.grab(1, {kVK_F5, kControlOption}));
  EXPECT_FALSE(user.grabKey(kVK_F5, kMask));
  EXPECT_FALSE(grabs.grab(2, {kVK_Function, 0}));
  EXPECT_FALSE(grabs.grab(2, {100000, 0}));
  EXPECT_FALSE(grabs.grab(2, {kVK_F6, 0x400}));
}

TEST_F(ServerTest, followsAModifierToAnotherBit) {
  ASSERT_TRUE(grabs.grab(1, {kVK_F5, kCommand}));
  ASSERT_EQ(std::system("xmodmap -e 'clear mod4' -e 'clear mod3' -e 'add mod3 = Super_L'"), 0);
  ASSERT_TRUE(reactor.runUntil([&] {
    user.down(kVK_Command);
    user.tap(kVK_F5);
    user.up(kVK_Command);
    return !heard.empty();
  }));
}

TEST_F(ServerTest, showsWhatTheLatinLayoutPrints) {
  struct {
    const char* layout;
    std::uint8_t group;
    std::vector<std::pair<std::uint16_t, const char*>> keys;
  } const rows[] = {
      {"us", 0, {{kVK_ANSI_A, "a"}, {kVK_ANSI_Y, "y"}, {kVK_ANSI_Keypad7, "7"}, {kVK_ANSI_KeypadEnter, ""}}},
      {"de", 0, {{kVK_ANSI_Y, "z"}, {kVK_ANSI_Minus, "ß"}, {kVK_ANSI_Grave, "^"}, {kVK_ANSI_Equal, "´"}}},
      {"fr",
       0,
       {{kVK_ANSI_A, "q"}, {kVK_ANSI_Semicolon, "m"}, {kVK_ANSI_1, "&"}, {kVK_ANSI_LeftBracket, "^"}}},
      {"us,ru", 1, {{kVK_ANSI_A, "a"}}},
      {"ru,de", 0, {{kVK_ANSI_Y, "z"}}},
      {"ru", 0, {{kVK_ANSI_A, "a"}, {kVK_ANSI_Y, "y"}, {kVK_Function, ""}}},
  };
  const std::vector<std::pair<const char*, std::string>> letterRows = {
      {"us", "qwertyuiop"}, {"de", "qwertzuiop"}, {"fr", "azertyuiop"}};
  constexpr std::uint16_t kLetterRow[] = {kVK_ANSI_Q, kVK_ANSI_W, kVK_ANSI_E, kVK_ANSI_R, kVK_ANSI_T,
                                          kVK_ANSI_Y, kVK_ANSI_U, kVK_ANSI_I, kVK_ANSI_O, kVK_ANSI_P};
  for (const auto& [layout, letters] : letterRows) {
    setLayout(layout);
    std::string shown;
    for (const std::uint16_t key : kLetterRow) shown += keyboard.displayCharacter(key).value_or("?");
    EXPECT_EQ(shown, letters) << layout;
  }
  for (const auto& row : rows) {
    setLayout(row.layout);
    lock(0, row.group);
    for (const auto& [key, text] : row.keys)
      EXPECT_EQ(keyboard.displayCharacter(key), text) << row.layout << key;
    unlock();
  }
}

TEST_F(ServerTest, hearsOutsidePressesWhileSomebodyListens) {
  RawPresses presses(connection);
  std::vector<RawPress> told;
  user.click(1);
  presses.setHandler([&](const RawPress& press) { told.push_back(press); });
  const auto window = user.openWindow();
  user.point(150, 130);
  xcb_grab_pointer(user.get(), 1, window, 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, 0);
  for (const std::uint8_t button : {4, 3, 1}) user.click(button);
  ASSERT_TRUE(reactor.runUntil([&] { return told.size() > 1; })) << told.size();
  EXPECT_EQ(told[0].button, 3);
  EXPECT_EQ(told[1].x, 150);
  EXPECT_EQ(told[1].y, 130);
  EXPECT_EQ(told[1].windows, std::vector{window});
  presses.setHandler({});
  user.click(1);
  take();
  EXPECT_EQ(told.size(), 2U);
}

TEST_F(ServerTest, capturesTheKeyboardUnlessSomebodyElseHasIt) {
  EXPECT_TRUE(keyboard.setKeyboardCaptured(true));
  User other;
  X11Keyboard theirs(connection, other.get());
  EXPECT_FALSE(theirs.setKeyboardCaptured(true));
  EXPECT_TRUE(keyboard.setKeyboardCaptured(false));
  user.sync();
  EXPECT_TRUE(theirs.setKeyboardCaptured(true));
}

/// True when the desktop's list holds an enabled shortcut of that key and those modifiers.
std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

bool holds(const std::vector<std::map<std::string, std::any>>& list, std::int64_t code,
           std::int64_t modifiers) {
  return std::any_of(list.begin(), list.end(), [&](const auto& entry) {
    return std::any_cast<bool>(entry.at("kHISymbolicHotKeyEnabled")) &&
           std::any_cast<std::int64_t>(entry.at("kHISymbolicHotKeyCode")) == code &&
           std::any_cast<std::int64_t>(entry.at("kHISymbolicHotKeyModifiers")) == modifiers;
  });
}

TEST_F(ServerTest, readsTheShortcutsOfThePresentDesktop) {
  const std::string folder = environment("XDG_CONFIG_HOME");
  ASSERT_EQ(
      std::system(
          ("printf '[kwin]\\nKill=Meta+Ctrl+D,none,Kill\\n' >" + folder + "/kglobalshortcutsrc").c_str()),
      0);
  const std::string set = "xfconf-query -c xfce4-keyboard-shortcuts -n -p '/commands/custom/";
  ASSERT_EQ(std::system((set + "<Primary><Alt>Delete' -t string -s lock").c_str()), 0);
  ASSERT_EQ(std::system((set + "<Nonsense>F1' -t string -s lock").c_str()), 0);
  ASSERT_EQ(std::system((set + "override' -t bool -s true").c_str()), 0);
  struct {
    const char* desktop;
    std::int64_t code;
    std::int64_t modifiers;
  } const rows[] = {
      {"XFCE", kVK_ForwardDelete, 0x1800}, {"KDE", kVK_ANSI_D, 0x1100}, {"ubuntu:GNOME", kVK_F4, 0x800}};
  for (const auto& row : rows) {
    ::setenv("XDG_CURRENT_DESKTOP", row.desktop, 1);
    const auto list = keyboard.symbolicHotKeys();
    ASSERT_TRUE(list) << row.desktop;
    EXPECT_TRUE(holds(*list, row.code, row.modifiers)) << row.desktop;
    EXPECT_FALSE(holds(*list, kVK_ANSI_J, 0x1B00)) << row.desktop;
  }
  ::setenv("XDG_CURRENT_DESKTOP", "", 1);
  EXPECT_EQ(keyboard.symbolicHotKeys().has_value(), false);
}

TEST(NoServerTest, refusesWithoutADisplay) {
  const std::string display = environment("DISPLAY");
  ::unsetenv("DISPLAY");
  capture::PollReactor reactor;
  X11Connection connection(reactor);
  HotKeyGrabs grabs(connection);
  X11Keyboard keyboard(connection, nullptr);
  RawPresses presses(connection);
  presses.setHandler([](const RawPress&) {});
  keyboard.beep();
  EXPECT_FALSE(grabs.grab(1, {kVK_F5, 0}));
  EXPECT_EQ(keyboard.displayCharacter(kVK_ANSI_A), std::nullopt);
  EXPECT_FALSE(keyboard.setKeyboardCaptured(true));
  ::setenv("DISPLAY", display.c_str(), 1);
}

}  // namespace
}  // namespace vistrel::x11
