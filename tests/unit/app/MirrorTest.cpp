#include <gtest/gtest.h>

#include <functional>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "app/AuxiliaryWindows.h"
#include "app/Notifications.h"
#include "app/PreferenceKeys.h"
#include "appkit/NSAlert.h"
#include "appkit/NSWindow.h"
#include "base/KeyCodes.h"
#include "tests/unit/app/Program.h"

namespace vistrel {
namespace {

using test::Program;
using Lines = std::vector<std::string>;
using Press = backend::OutsidePressClient::Press;

constexpr std::uint64_t kShift = NSEventModifierFlags::kShift;
constexpr std::uint64_t kCommand = NSEventModifierFlags::kCommand;
constexpr std::uint64_t kControl = NSEventModifierFlags::kControl;

TEST(Mirror, OpensByEveryWayAndClosesByEveryWay) {
  struct Way {
    std::string description;
    std::function<void(Program&)> close;
  };
  const std::vector<Way> ways = {
      {"second click", [](Program& p) { p.desktop.clickIcon(); }},
      {"click with Shift", [](Program& p) { p.desktop.clickIcon(kShift); }},
      {"click with Command", [](Program& p) { p.desktop.clickIcon(kCommand); }},
      {"click elsewhere", [](Program& p) { p.desktop.clickElsewhere(); }},
      {"other application", [](Program& p) { p.desktop.activateOtherApplication(); }},
      {"display change", [](Program& p) { p.desktop.changeDisplays(); }},
      {"Escape", [](Program& p) { p.desktop.pressKey(kVK_Escape); }},
      {"reopen", [](Program& p) { p.desktop.simulatedSession.client().reopen(); }},
      {"menu", [](Program& p) { p.desktop.openMenuFromTray(); }},
      {"menu by Control", [](Program& p) { p.desktop.clickIcon(kControl); }},
      {"the window manager",
       [](Program& p) { p.desktop.windowSystem.titled("Vistrel").client().closeRequested(); }},
      {"minimizing",
       [](Program& p) {
         p.desktop.windowSystem.titled("Vistrel").client().didLeaveScreen(backend::Hiding::Minimized);
       }},
      {"leaving the virtual desktop",
       [](Program& p) {
         p.desktop.windowSystem.titled("Vistrel").client().didLeaveScreen(backend::Hiding::DesktopLeft);
       }},
      {"showing the desktop",
       [](Program& p) {
         auto& window = p.desktop.windowSystem.titled("Vistrel").client();
         window.dragDidBegin();
         window.didLeaveScreen(backend::Hiding::DesktopShown);
       }},
      {"data change",
       [](Program&) { NotificationCenter::defaultCenter().post(notification::dataChanged()); }},
  };
  for (const auto& way : ways) {
    SCOPED_TRACE(way.description);
    Program program;
    program.launchWith({"A"});
    program.desktop.clickIcon();
    ASSERT_TRUE(program.isShown());
    EXPECT_TRUE(program.desktop.tray.isHighlighted);
    EXPECT_EQ(program.desktop.simulatedCameras.openStreams(), 1U);
    way.close(program);
    EXPECT_FALSE(program.isShown());
    EXPECT_FALSE(program.desktop.tray.isHighlighted);
    EXPECT_EQ(program.desktop.simulatedCameras.openStreams(), 0U);
    EXPECT_TRUE(program.desktop.windowSystem.onScreen().empty());
    EXPECT_EQ(program.desktop.loop.timerCount(), 0U);
    program.desktop.tray.client().statusMenuDidClose();
    program.desktop.loop.settle();
    program.desktop.clickIcon();
    EXPECT_TRUE(program.isShown());
  }
}

TEST(Mirror, AClickOnTheIconClosesWhereverThePointerIsByItsEnd) {
  struct Case {
    Point press;
    Point release;
    bool opensAgain;
    bool isReleaseTold = true;
    Press kind = Press::HandedOn;
  };
  Program program;
  program.launchWith({"A"});
  const Rect icon = program.desktop.tray.frame.value();
  const Point inIcon = icon.center();
  const Point elsewhere{100, 700};
  for (const Case& c :
       {Case{inIcon, inIcon, false}, Case{{icon.x, icon.y}, {icon.maxX(), icon.maxY()}, false},
        Case{inIcon, elsewhere, false}, Case{elsewhere, inIcon, true}, Case{inIcon, inIcon, true, false},
        Case{inIcon, inIcon, true, true, Press::Swallowed}}) {
    program.desktop.tray.isReleaseTold = c.isReleaseTold;
    if (!program.isShown()) program.desktop.clickIcon();
    program.desktop.windowSystem.pressOutside(c.press, c.kind);
    EXPECT_FALSE(program.isShown());
    program.desktop.simulatedSession.pointer = c.release;
    program.desktop.tray.client().statusIconPressed(backend::PointerButton::Left, 0, c.release);
    EXPECT_EQ(program.isShown(), c.opensAgain);
  }
}

TEST(Mirror, AnOpeningThatFailsLeavesNothingBehind) {
  Program program;
  program.launchWith({"A"});
  program.desktop.windowSystem.whenShown = [] { throw std::runtime_error("no memory"); };
  EXPECT_THROW(program.desktop.clickIcon(), std::runtime_error);
  program.desktop.windowSystem.whenShown = nullptr;
  EXPECT_FALSE(program.isShown());
  EXPECT_TRUE(program.desktop.windowSystem.onScreen().empty());
  EXPECT_EQ(program.desktop.simulatedCameras.openStreams(), 0U);
  program.desktop.clickIcon();
  EXPECT_TRUE(program.isShown());
  EXPECT_EQ(program.desktop.windowSystem.onScreen().size(), 1U);
  EXPECT_EQ(program.desktop.simulatedCameras.openStreams(), 1U);
}

TEST(Mirror, AReopenOpensItWithoutAHighlightUnlessAWindowIsOnTheScreen) {
  Program program;
  program.launchWith({"A"});
  auto& session = program.desktop.simulatedSession.client();
  openAboutWindow();
  auto& about = program.desktop.windowSystem.titled("About Vistrel");
  session.reopen();
  EXPECT_FALSE(program.isShown());
  about.client().didLeaveScreen(backend::Hiding::DesktopShown);
  session.reopen();
  EXPECT_TRUE(program.isShown());
  EXPECT_FALSE(program.desktop.tray.isHighlighted);
  about.client().didReturnToScreen();
  session.reopen();
  EXPECT_TRUE(program.isShown());
}

TEST(Mirror, DismissPreferenceGovernsTheFocusAlone) {
  struct Case {
    std::int64_t stored;
    bool staysWithoutFocus;
  };
  for (const Case c : {Case{0, false}, Case{1, true}, Case{7, true}, Case{-1, true}}) {
    SCOPED_TRACE(c.stored);
    Program program;
    UserDefaults::standard().setInteger(c.stored, preference::kDismiss);
    program.launchWith({"A"});
    program.desktop.clickIcon();
    program.desktop.activateOtherApplication();
    EXPECT_EQ(program.isShown(), c.staysWithoutFocus);
    program.desktop.clickElsewhere();
    EXPECT_FALSE(program.isShown());
  }
}

TEST(Mirror, SizeIconAndMirroringFollowThePreferences) {
  struct Case {
    std::int64_t index;
    Size size;
    std::string icon;
  };
  const std::vector<Case> cases = {{0, {426, 240}, "Icon1"},
                                   {1, {852, 480}, "Icon2"},
                                   {2, {1278, 720}, "Icon3"},
                                   {-1, {426, 240}, "Icon1"},
                                   {7, {426, 240}, "Icon1"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.index);
    Program program;
    program.desktop.simulatedSession.screenList = {
        {"wide", {0, 0, 2560, 1440}, {0, 28, 2560, 1412}, 1, true}};
    program.launchWith({"A"});
    UserDefaults::standard().setInteger(c.index, preference::kSelectedPopoverSize);
    UserDefaults::standard().setInteger(c.index, preference::kSelectedIcon);
    UserDefaults::standard().setBool(c.index % 2 == 0, preference::kSelectedMirroring);
    NotificationCenter::defaultCenter().post(notification::dataChanged());
    EXPECT_EQ(program.desktop.tray.shownIcon(), c.icon);
    program.desktop.clickIcon();
    const Rect frame = program.desktop.windowSystem.titled("Vistrel").window().frame();
    EXPECT_EQ((Size{frame.width, frame.height}), c.size);
    EXPECT_EQ(program.mirror().previewLayer()->connection()->isVideoMirrored(), c.index % 2 == 0);
  }
}

TEST(Mirror, IconIsReplacedInPlaceAndNeverTwice) {
  Program program;
  program.launchWith({"A"});
  program.desktop.clickIcon();
  const auto preview = program.mirror().previewLayer();
  const auto menu = program.delegate->menu();
  NotificationCenter::defaultCenter().post(notification::mirroringChanged());
  EXPECT_EQ(program.mirror().previewLayer(), preview) << "an open preview stays as it is";
  for (int i = 0; i < 3; ++i) NotificationCenter::defaultCenter().post(notification::dataChanged());
  for (const auto& icon : program.desktop.tray.icons) EXPECT_FALSE(icon.empty());
  EXPECT_EQ(program.delegate->menu(), menu);
}

TEST(Mirror, FollowsLightAndDark) {
  Program program;
  program.launchWith({"A"});
  program.desktop.clickIcon();
  auto& window = program.desktop.windowSystem.titled("Vistrel").window();
  EXPECT_FALSE(window.effectiveAppearance().isDark());
  program.desktop.setDark(true);
  EXPECT_TRUE(window.effectiveAppearance().isDark());
  EXPECT_TRUE(program.delegate->popover()->isDarkMode());
  program.desktop.setDark(false);
  EXPECT_FALSE(window.effectiveAppearance().isDark());
  EXPECT_EQ(program.takeLog(), (Lines{"📹✅ Capture Session Started", "Switched modes", "Switched modes"}));
}

TEST(Mirror, ShortcutTogglesOnReleaseWithoutAHighlight) {
  Program program;
  KeyboardShortcuts::setShortcut(KeyboardShortcuts::Shortcut(kVK_Space, controlKey | optionKey),
                                 shortcutName::toggleShortcutMode());
  program.launchWith({"A"});
  const backend::HotKeyCombination combination{kVK_Space, controlKey | optionKey};
  for (const bool opens : {true, false, true}) {
    EXPECT_TRUE(program.desktop.simulatedHotKeys.send(combination, backend::HotKeyPhase::Pressed));
    EXPECT_NE(program.isShown(), opens);
    EXPECT_TRUE(program.desktop.simulatedHotKeys.send(combination, backend::HotKeyPhase::Released));
    EXPECT_EQ(program.isShown(), opens);
    EXPECT_FALSE(program.desktop.tray.isHighlighted);
  }
}

TEST(Mirror, TerminationEndsTheObservationsOnce) {
  Program program;
  program.launchWith({"A"});
  const auto window = NSWindow::create({0, 0, 100, 100}, 3, NSBackingStoreType::Buffered, false);
  window->makeKeyAndOrderFront(nullptr);
  int answers = 0;
  std::make_shared<NSAlert>()->beginSheetModalForWindow(*window, [&](NSModalResponse) { ++answers; });
  program.desktop.simulatedSession.client().terminateRequested();
  program.desktop.simulatedSession.client().terminateRequested();
  EXPECT_TRUE(program.desktop.loop.hasQuit());
  EXPECT_EQ(answers, 1);
  EXPECT_TRUE(NSApplication::shared().windows().empty());
  program.desktop.changeDisplays();
  EXPECT_EQ(program.takeLog(), Lines{});
}

TEST(MirrorDeathTest, AMissingIconStopsTheProgram) {
  Program program;
  program.desktop.resourceFolder.overrides["images/Icon1.svg"] = std::nullopt;
  EXPECT_DEATH(program.launch(), "unable to find image named Icon1");
}

TEST(MirrorDeathTest, MissingLayoutStopsTheProgram) {
  const std::string message = "Why cant I find CameraViewController. - Check Main.storyboard";
  for (const std::optional<std::string>& storyboard :
       {std::optional<std::string>(), std::optional<std::string>("{\"scenes\": {}}"),
        std::optional<std::string>("garbage")}) {
    Program program;
    program.desktop.resourceFolder.overrides["Main.storyboard.json"] = storyboard;
    EXPECT_DEATH(program.launch(), message);
  }
}

}  // namespace
}  // namespace vistrel
