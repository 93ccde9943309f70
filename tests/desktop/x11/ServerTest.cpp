#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "base/KeyCodes.h"
#include "linux/x11/InputCover.h"
#include "linux/x11/RawPresses.h"
#include "tests/desktop/x11/ServerFixture.h"

namespace vistrel::x11 {
namespace {

TEST_F(ServerTest, HearsAPressOnceWhateverIsLocked) {
  constexpr std::uint8_t kCaps = XCB_MOD_MASK_LOCK;
  constexpr std::uint8_t kNum = XCB_MOD_MASK_2;
  struct {
    const char* layout;
    std::uint8_t locks;
    std::uint8_t group;
  } const rows[] = {{"us", 0, 0},
                    {"us", kCaps, 0},
                    {"us", kNum, 0},
                    {"us", kCaps | kNum, 0},
                    {"de", 0, 0},
                    {"us,ru", 0, 1},
                    {"us,ru", kCaps | kNum, 1},
                    {"fr", kNum, 0},
                    {"ru", 0, 0}};
  ASSERT_TRUE(grabs.grab(1, {kVK_ANSI_Z, kControlOption}));
  ASSERT_TRUE(grabs.grab(2, {kVK_ANSI_Z, cmdKey}));
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

TEST_F(ServerTest, TellsAReleaseByItsKeyAlone) {
  ASSERT_TRUE(grabs.grab(1, {kVK_ANSI_J, kControlOption}));
  hold(kVK_ANSI_J);
  EXPECT_EQ(take(), (Strings{"down 1", "up 1"}));
}

TEST_F(ServerTest, HearsNothingOfAKeyThatWasDownBefore) {
  hold(kVK_ANSI_J, [&] { ASSERT_TRUE(grabs.grab(1, {kVK_ANSI_J, kControlOption})); });
  EXPECT_EQ(take(), Strings{});
  press(kVK_ANSI_J);
  EXPECT_EQ(take(), (Strings{"down 1", "up 1"}));

  // An action that takes its own shortcut anew.
  grabs.setHandler([&](std::uint32_t token, backend::HotKeyPhase phase) {
    hear();
    heard.emplace_back("anew");
    EXPECT_EQ(phase, backend::HotKeyPhase::Pressed);
    grabs.release(token);
    ASSERT_TRUE(grabs.grab(2, {kVK_ANSI_J, kControlOption}));
  });
  hold(kVK_ANSI_J);
  EXPECT_EQ(take(), Strings{"anew"});
  press(kVK_ANSI_J);
  EXPECT_EQ(take(), (Strings{"down 2", "up 2"}));
}

TEST_F(ServerTest, FindsAReleaseThatSomebodyElseGot) {
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

TEST_F(ServerTest, LeavesATakenCombinationWholly) {
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

TEST_F(ServerTest, KeepsAHeldKeyWhileTheKeyboardIsReplaced) {
  ASSERT_TRUE(grabs.grab(1, {kVK_F5, cmdKey}));
  user.down(kVK_Command);
  user.down(kVK_F5);
  ASSERT_TRUE(reactor.runUntil([&] { return heard == Strings{"down 1"}; }));
  ASSERT_EQ(std::system("setxkbmap -layout de -print | "
                        "sed 's/inet(evdev)\"/& modifier_map Mod3 { Super_L, Super_R };/' | "
                        "xkbcomp -w0 - $DISPLAY 2>/dev/null"),
            0);
  // The old grab is given back when the new one stands.
  ASSERT_TRUE(reactor.runUntil([&] { return user.grabKey(kVK_F5, XCB_MOD_MASK_4); }));
  user.up(kVK_F5);
  user.up(kVK_Command);
  EXPECT_EQ(take(), (Strings{"down 1", "up 1"}));
}

TEST_F(ServerTest, KeepsATimerOnlyWhileAKeyIsHeld) {
  ASSERT_TRUE(grabs.grab(1, {kVK_F5, 0}));
  const auto isCalm = [&] { return reactor.timersAhead() == 0; };
  ASSERT_TRUE(reactor.runUntil(isCalm));
  user.down(kVK_F5);
  ASSERT_TRUE(reactor.runUntil([&] { return heard == Strings{"down 1"}; }));
  EXPECT_EQ(reactor.timersAhead(), 1U);
  user.up(kVK_F5);
  ASSERT_TRUE(reactor.runUntil([&] { return heard == Strings{"down 1", "up 1"}; }));
  EXPECT_TRUE(reactor.runUntil(isCalm));
}

TEST_F(ServerTest, TakesAFreedShortcutWhenItsNameIsEnabledAgain) {
  using namespace KeyboardShortcuts;
  ASSERT_TRUE(user.grabKey(kVK_F5, XCB_MOD_MASK_CONTROL));
  DesktopWithKeyboard desktop;
  desktop.realHotKeys = &grabs;
  const Name name("ours");
  const Name fence("fence");
  setShortcut(Shortcut(kVK_F5, controlKey), name);
  setShortcut(Shortcut(kVK_F6, 0), fence);
  onKeyUp(name, [&] { heard.emplace_back("ours"); });
  onKeyUp(fence, [&] { heard.emplace_back("fence"); });
  const auto pressed = [&] {
    user.down(kVK_Control);
    user.tap(kVK_F5);
    user.up(kVK_Control);
    user.tap(kVK_F6);
    EXPECT_TRUE(reactor.runUntil([&] { return !heard.empty() && heard.back() == "fence"; }));
    return std::exchange(heard, {});
  };
  EXPECT_EQ(pressed(), Strings{"fence"});
  user.ungrabAll();
  enable(name);
  EXPECT_EQ(pressed(), Strings{"fence"});
  disable(name);
  enable(name);
  EXPECT_EQ(pressed(), (Strings{"ours", "fence"}));
  hear();
}

TEST_F(ServerTest, FollowsAModifierToAnotherBit) {
  ASSERT_TRUE(grabs.grab(1, {kVK_F5, cmdKey}));
  ASSERT_EQ(std::system("xmodmap -e 'clear mod4' -e 'clear mod3' -e 'add mod3 = Super_L'"), 0);
  ASSERT_TRUE(reactor.runUntil([&] {
    user.down(kVK_Command);
    user.tap(kVK_F5);
    user.up(kVK_Command);
    return !heard.empty();
  }));
}

TEST_F(ServerTest, HearsOutsidePressesWhileSomebodyListens) {
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
  presses.setHandler({});
  user.click(1);
  take();
  EXPECT_EQ(told.size(), 2U);
}

TEST_F(ServerTest, CapturesTheKeyboardUnlessSomebodyElseHasIt) {
  EXPECT_TRUE(keyboard.setKeyboardCaptured(true));
  User other;
  X11Keyboard theirs(connection, other.get(), grabs);
  EXPECT_FALSE(theirs.setKeyboardCaptured(true));
  EXPECT_TRUE(keyboard.setKeyboardCaptured(false));
  user.sync();
  EXPECT_TRUE(theirs.setKeyboardCaptured(true));
}

TEST(NoServerTest, RefusesWithoutADisplay) {
  const char* value = std::getenv("DISPLAY");
  const std::string display = value ? value : "";
  ::unsetenv("DISPLAY");
  desktop::PollReactor reactor;
  X11Connection connection(reactor);
  HotKeyGrabs grabs(connection);
  X11Keyboard keyboard(connection, nullptr, grabs);
  RawPresses presses(connection);
  presses.setHandler([](const RawPress&) {});
  keyboard.beep();
  EXPECT_FALSE(grabs.grab(1, {kVK_F5, 0}));
  EXPECT_EQ(keyboard.displayCharacter(kVK_ANSI_A), std::nullopt);
  EXPECT_FALSE(keyboard.setKeyboardCaptured(true));
  ::setenv("DISPLAY", display.c_str(), 1);
}

TEST_F(ServerTest, ACoverIsOffWithTheFirstPressOnItAndGoesWithItsOwner) {
  const auto isCovered = [&](std::int16_t x) {
    user.point(x, 50);
    const auto cookie = xcb_query_pointer(user.get(), user.root());
    const Reply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(user.get(), cookie, nullptr));
    return reply && reply->child != XCB_NONE;
  };
  const auto wait = [&](const std::function<bool()>& isSo) {
    for (int turns = 0; turns < 1000 && !isSo(); ++turns) reactor.turn(std::chrono::milliseconds(10));
    return isSo();
  };
  auto cover = std::make_unique<InputCover>(VISTREL_COVER);
  for (int round = 0; round < 2; ++round) {
    cover->setParts({{0, 0, 100, 100}, {200, 0, 100, 100}});
    ASSERT_TRUE(wait([&] { return isCovered(50) && isCovered(250); }));
    EXPECT_TRUE(cover->isAble());
    EXPECT_FALSE(isCovered(150));
    user.click(1);  // beside it
    ASSERT_TRUE(isCovered(250));
    user.click(3);
    EXPECT_TRUE(wait([&] { return !isCovered(50) && !isCovered(250); }));
  }
  EXPECT_FALSE(cover->failure());
  cover->setParts({{0, 0, 100, 100}});
  ASSERT_TRUE(wait([&] { return isCovered(50); }));
  cover.reset();
  EXPECT_TRUE(wait([&] { return !isCovered(50); }));
  for (const char* unable : {"/nowhere", "/bin/true"}) {
    InputCover none(unable);
    EXPECT_TRUE(wait([&] { return !none.isAble() && none.failure(); })) << unable;
  }

  const pid_t owner = ::fork();
  if (owner == 0) {  // ends without a word
    InputCover orphan(VISTREL_COVER);
    orphan.setParts({{0, 0, 100, 100}});
    ::pause();
    ::_exit(1);
  }
  ASSERT_GT(owner, 0);
  EXPECT_TRUE(wait([&] { return isCovered(50); }));
  ::kill(owner, SIGKILL);
  ::waitpid(owner, nullptr, 0);
  EXPECT_TRUE(wait([&] { return !isCovered(50); }));
}

}  // namespace
}  // namespace vistrel::x11
