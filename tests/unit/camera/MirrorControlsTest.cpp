#include <gtest/gtest.h>

#include "app/Notifications.h"
#include "app/PreferenceKeys.h"
#include "appkit/NSWindow.h"
#include "base/KeyCodes.h"
#include "tests/unit/app/Program.h"

namespace vistrel {
namespace {

using test::Program;
using Lines = std::vector<std::string>;

TEST(MirrorControls, ControlsFollowThePointer) {
  struct Row {
    bool isDark;
    bool isDetached;
  };
  for (const Row row : {Row{false, false}, Row{true, false}, Row{false, true}, Row{true, true}}) {
    SCOPED_TRACE(row.isDark ? "dark" : "light");
    Program program;
    program.launchWith({"A", "B"});
    program.desktop.setDark(row.isDark);
    for (int showing = 0; showing < 2; ++showing) {
      program.takeLog();
      program.desktop.clickIcon();
      auto& mirror = program.mirror();
      auto& window = program.desktop.windowSystem.titled("Vistrel");
      EXPECT_TRUE(mirror.availableCamerasPopupButton().isHidden());
      EXPECT_EQ(window.focused(), &mirror.availableCamerasPopupButton());
      if (row.isDetached) {
        int posts = 0;
        const auto observer = NotificationCenter::defaultCenter().addObserver(
            notification::windowDetached(), nullptr, [&](const Notification&) { ++posts; });
        window.client().dragDidBegin();
        window.client().dragDidBegin();
        EXPECT_EQ(posts, 1);
        EXPECT_EQ(program.takeLog(), (Lines{"📹✅ Capture Session Started", "Should Detach", "Detached"}));
        EXPECT_FALSE(window.window().standardWindowButton(NSWindowButton::Close)->isHidden());
      }
      EXPECT_EQ(mirror.isDetached(), row.isDetached);
      for (const bool inside : {false, true, false, true}) {
        inside ? window.client().pointerDidEnter() : window.client().pointerDidLeave();
        EXPECT_EQ(mirror.availableCamerasPopupButton().isHidden(), !inside);
        EXPECT_EQ(mirror.popupContrastView().isHidden(), !(inside && row.isDark));
        EXPECT_TRUE(mirror.closeButtonContrastView().isHidden());
        const auto* close = window.window().standardWindowButton(NSWindowButton::Close);
        ASSERT_EQ(close != nullptr, row.isDetached);
        EXPECT_EQ(close && close->isHidden(), row.isDetached && !inside);
      }
      program.delegate->popover()->performClose(nullptr);
      EXPECT_FALSE(mirror.isDetached());
    }
  }
}

TEST(MirrorControls, TornOffItIsAWindow) {
  Program program;
  program.launchWith({"A"});
  program.desktop.clickIcon();
  auto& window = program.desktop.windowSystem.titled("Vistrel");
  window.client().dragDidBegin();
  EXPECT_EQ(window.window().kind(), NSWindowKind::Detached);
  program.desktop.clickElsewhere();
  program.desktop.pressKey(kVK_Escape);
  program.desktop.simulatedSession.client().reopen();
  EXPECT_TRUE(program.isShown());
  window.client().viewClicked(*window.window().closeButton());
  EXPECT_FALSE(program.isShown());
  EXPECT_EQ(program.desktop.simulatedCameras.openStreams(), 0U);
  program.desktop.clickIcon();
  EXPECT_EQ(program.desktop.windowSystem.titled("Vistrel").window().kind(), NSWindowKind::Popover);
}

TEST(MirrorControls, BothMenusMarkEveryCameraOfTheSelectedName) {
  Program program;
  UserDefaults::standard().setString("twin", preference::kDefaultCamera);
  program.launchWith({"A", "twin", "twin"});
  program.desktop.clickIcon();
  const auto& menu = program.mirror().availableCamerasPopupButton().menu();
  EXPECT_TRUE(menu->itemArray().front()->image()) << "the face of the button";
  Lines rows = program.desktop.rows(*menu);
  rows.erase(rows.begin());
  EXPECT_EQ(rows, program.menuRows());
  rows.resize(3);
  EXPECT_EQ(rows, (Lines{"A", "✓ twin", "✓ twin"}));
}

TEST(MirrorControls, ViewsMenuWorksByKeyboard) {
  Program program;
  program.launchWith({"A", "B"});
  program.desktop.clickIcon();
  auto& button = program.mirror().availableCamerasPopupButton();
  for (const std::uint16_t key : {kVK_ANSI_A, kVK_Return}) program.desktop.pressKey(key);
  EXPECT_TRUE(button.isHidden()) << "only a key that opens the menu shows the button";
  program.desktop.pressKey(kVK_Space);
  EXPECT_FALSE(button.isHidden());
  auto& window = program.desktop.windowSystem.titled("Vistrel");
  ASSERT_EQ(window.openMenu(), &button);
  const Lines rows = {"", "✓ A", "B", "---", "About Vistrel", "Preferences…", "---", "Quit Vistrel"};
  EXPECT_EQ(program.desktop.rows(*button.menu()), rows);
  EXPECT_EQ(button.menu()->title(), "Options Menu");
  program.takeLog();
  button.itemChosen(button.menu()->itemArray()[2]);
  const Lines log = {"📹🛑 Capture Session Stopped", "⚠️ Saving default camera: B",
                     "📹✅ Capture Session Started"};
  EXPECT_EQ(program.takeLog(), log);
  EXPECT_EQ(program.desktop.rows(*button.menu())[2], "✓ B");
  EXPECT_EQ(program.desktop.simulatedCameras.openStreams(), 1U);
  button.itemChosen(button.menu()->itemArray().back());
  EXPECT_TRUE(program.desktop.loop.hasQuit());
}

}  // namespace
}  // namespace vistrel
