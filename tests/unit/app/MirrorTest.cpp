#include <gtest/gtest.h>

#include <functional>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "app/Notifications.h"
#include "app/PreferenceKeys.h"
#include "app/ShortcutNames.h"
#include "appkit/NSAlert.h"
#include "appkit/NSWindow.h"
#include "tests/unit/app/Program.h"

namespace vistrel {
namespace {

using test::Program;
using Lines = std::vector<std::string>;
using namespace std::chrono_literals;

constexpr std::uint64_t kShift = NSEventModifierFlags::kShift;
constexpr std::uint64_t kCommand = NSEventModifierFlags::kCommand;
constexpr std::uint64_t kControl = NSEventModifierFlags::kControl;
constexpr std::uint64_t kOption = NSEventModifierFlags::kOption;
constexpr std::uint16_t kEscape = 53;

const Lines kTwoCameras = {"✓ A", "B", "---", "About Vistrel", "Preferences…", "---", "Quit Vistrel"};

TEST(Mirror, opensByEveryWayAndClosesByEveryWay) {
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
      {"Escape", [](Program& p) { p.desktop.pressKey(kEscape); }},
      {"reopen", [](Program& p) { p.desktop.sessionHost.client().reopen(); }},
      {"menu", [](Program& p) { p.desktop.openMenuFromTray(); }},
      {"menu by Control", [](Program& p) { p.desktop.clickIcon(kControl); }},
      {"the window manager",
       [](Program& p) { p.desktop.windowSystem.titled("Vistrel").client().closeRequested(); }},
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
    EXPECT_EQ(program.desktop.cameraHost.openStreams(), 1U);
    way.close(program);
    EXPECT_FALSE(program.isShown());
    EXPECT_FALSE(program.desktop.tray.isHighlighted);
    EXPECT_EQ(program.desktop.cameraHost.openStreams(), 0U);
    EXPECT_TRUE(program.desktop.windowSystem.onScreen().empty());
    EXPECT_EQ(program.desktop.loop.timerCount(), 0U);
    program.desktop.tray.client().statusMenuDidClose();
    program.desktop.loop.settle();
    program.desktop.clickIcon();
    EXPECT_TRUE(program.isShown());
  }
}

TEST(Mirror, aClickOnTheIconClosesWhereverThePointerIsByItsEnd) {
  struct Case {
    Point press;
    Point release;
    bool opensAgain;
  };
  Program program;
  program.launchWith({"A"});
  const Rect icon = program.desktop.tray.frame.value();
  const Point inIcon = icon.center();
  const Point elsewhere{100, 700};
  for (const Case& c :
       {Case{inIcon, inIcon, false}, Case{{icon.x, icon.y}, {icon.maxX(), icon.maxY()}, false},
        Case{inIcon, elsewhere, false}, Case{elsewhere, inIcon, true}}) {
    if (!program.isShown()) program.desktop.clickIcon();
    program.desktop.windowSystem.pressOutside(c.press);
    EXPECT_FALSE(program.isShown());
    program.desktop.sessionHost.pointer = c.release;
    program.desktop.tray.client().statusIconPressed(host::PointerButton::Left, 0);
    EXPECT_EQ(program.isShown(), c.opensAgain);
  }
}

TEST(Mirror, dismissPreferenceGovernsTheFocusAlone) {
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

TEST(Mirror, sizeIconAndMirroringFollowThePreferences) {
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
    program.desktop.sessionHost.screenList = {{"wide", {0, 0, 2560, 1440}, {0, 28, 2560, 1412}, 1, true}};
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

TEST(Mirror, iconIsReplacedInPlaceAndNeverTwice) {
  Program program;
  program.launchWith({"A"});
  for (int i = 0; i < 3; ++i) NotificationCenter::defaultCenter().post(notification::dataChanged());
  for (const auto& icon : program.desktop.tray.icons) EXPECT_FALSE(icon.empty());
}

TEST(Mirror, contextMenuShowsOnceAndThenLetsClicksThrough) {
  struct Way {
    std::string description;
    std::function<void(Program&)> open;
  };
  const std::vector<Way> ways = {{"host", [](Program& p) { p.desktop.openMenuFromTray(); }},
                                 {"Control", [](Program& p) { p.desktop.clickIcon(kControl); }},
                                 {"Option", [](Program& p) { p.desktop.clickIcon(kOption); }}};
  for (const auto& way : ways) {
    SCOPED_TRACE(way.description);
    Program program;
    program.launchWith({"A", "B"});
    std::vector<std::shared_ptr<NSEvent>> posted;
    const auto monitor = NSEvent::addLocalMonitor(maskOf(NSEventType::RightMouseUp), [&](const auto& event) {
      posted.push_back(event);
      return event;
    });
    EXPECT_EQ(program.delegate->statusBarItem()->menu(), nullptr);
    way.open(program);
    ASSERT_NE(program.delegate->statusBarItem()->menu(), nullptr);
    EXPECT_EQ(program.menuRows(), kTwoCameras);
    // A host that reports no close: the next press ends the showing, and does its own work too.
    program.desktop.clickIcon();
    EXPECT_EQ(program.delegate->statusBarItem()->menu(), nullptr);
    EXPECT_TRUE(program.isShown());
    ASSERT_EQ(posted.size(), 1U);
    EXPECT_EQ(posted[0]->locationInWindow(), (Point{1200, 26}));
    program.desktop.tray.client().statusMenuDidClose();
    program.desktop.loop.settle();
    EXPECT_EQ(posted.size(), 1U);
    NSEvent::removeMonitor(monitor);
  }
}

TEST(Mirror, chosenCameraIsStoredMarkedAndShownNext) {
  Program program;
  program.launchWith({"A", "B"});
  program.desktop.openMenuFromTray();
  program.desktop.chooseFromTray("B");
  const Lines log = {"⚠️ Saving default camera: B"};
  EXPECT_EQ(program.takeLog(), log);
  EXPECT_EQ(program.menuRows()[1], "✓ B");
  EXPECT_EQ(program.desktop.rows(*program.desktop.tray.mirrored)[1], "✓ B");
  EXPECT_EQ(UserDefaults::standard().stringForKey(preference::kDefaultCamera), "B");
  EXPECT_EQ(program.delegate->statusBarItem()->menu(), nullptr);
  program.desktop.clickIcon();
  EXPECT_TRUE(program.desktop.cameraHost.camera("B").streams.front()->isActive());
}

TEST(Mirror, menuHoldsTheCamerasOfItsBuild) {
  Program program;
  program.launchWith({"A", "B"});
  program.desktop.cameraHost.unplug("B");
  program.desktop.openMenuFromTray();
  EXPECT_EQ(program.menuRows(), kTwoCameras);
  program.desktop.tray.client().statusMenuDidClose();
  EXPECT_EQ(program.menuRows()[1], "---");
}

TEST(Mirror, firstShowingLogsInOrder) {
  Program program;
  UserDefaults::standard().setString("A", preference::kDefaultCamera);
  program.launchWith({"A"});
  program.desktop.clickIcon();
  const std::string refresh = "📷 Refreshed Devices — available cameras: [<AVCaptureDevice: A [camera1]>]";
  const std::string preference = "Detected a user preference: A";
  const Lines first = {refresh, preference, refresh, preference, refresh, "📹✅ Capture Session Started"};
  EXPECT_EQ(program.desktop.takeLog(), first);
  program.desktop.clickIcon();
  EXPECT_EQ(program.desktop.takeLog(), Lines{});
  program.desktop.clickIcon();
  const Lines second = {refresh, preference, refresh, "📹✅ Capture Session Started"};
  EXPECT_EQ(program.desktop.takeLog(), second);
}

TEST(Mirror, takesTheHighestPresetThatTheCameraReaches) {
  struct Case {
    std::vector<PixelSize> sizes;
    std::string asked;
  };
  const std::vector<Case> cases = {{{{1280, 720}, {3840, 2160}, {1920, 1080}}, "3840x2160"},
                                   {{{1280, 720}, {1920, 1080}}, "1920x1080"},
                                   {{{1280, 720}, {640, 480}}, "1280x720"},
                                   {{{640, 480}}, "own choice"}};
  for (const auto& c : cases) {
    Program program;
    program.desktop.cameraHost.plug("A").sizes = c.sizes;
    program.launch();
    program.desktop.clickIcon();
    EXPECT_EQ(program.desktop.cameraHost.lastStart, c.asked);
  }
}

TEST(Mirror, faultsOfACameraEndInALineAndANeutralGlass) {
  struct Fault {
    std::string description;
    std::function<void(Program&)> prepare;
    std::function<void(Program&)> happen;
    Lines log;
  };
  const std::string started = "📹✅ Capture Session Started";
  const std::string error = "📹💥 Capture Session Runtime Error: ";
  const auto camera = [](Program& p) -> simulated::SimulatedCamera& {
    return p.desktop.cameraHost.camera("A");
  };
  const auto nothing = [](Program&) {};
  const auto behave = [&](simulated::StartBehavior behavior) {
    return [=](Program& p) { camera(p).behavior = behavior; };
  };
  using simulated::StartBehavior;
  const std::vector<Fault> faults = {
      {"busy", [&](Program& p) { camera(p).openError = "A is busy"; }, nothing, {"A is busy", started}},
      {"refuses the format",
       behave(StartBehavior::RefusesFormat),
       nothing,
       {error + "the camera refused the format"}},
      {"never starts",
       behave(StartBehavior::HangsForEver),
       [](Program& p) { p.desktop.loop.advance(3s); },
       {error + "the camera sends no pictures"}},
      {"starts late",
       behave(StartBehavior::StartsLater),
       [&](Program& p) { camera(p).streams[0]->begin(); },
       {started}},
      {"freezes",
       nothing,
       [&](Program& p) {
         for (const auto pause : {700ms, 2999ms, 2500ms}) {
           camera(p).streams[0]->sendFrame();
           p.desktop.loop.advance(pause);
         }
         camera(p).streams[0]->sendFrame();
         p.desktop.loop.advance(2999ms);
         EXPECT_EQ(p.takeLog(), Lines{started});
         p.desktop.loop.advance(1ms);
       },
       {error + "the camera sends no pictures"}},
      {"is unplugged",
       nothing,
       [](Program& p) { p.desktop.cameraHost.unplug("A"); },
       {started, error + "the camera was unplugged"}},
      {"an error without information",
       nothing,
       [](Program&) { NotificationCenter::defaultCenter().post(AVCaptureSessionRuntimeErrorNotification); },
       {started, error + "n/a"}},
  };
  for (const auto& fault : faults) {
    SCOPED_TRACE(fault.description);
    Program program;
    program.launchWith({"A", "B"});
    fault.prepare(program);
    program.desktop.clickIcon();
    program.desktop.loop.settle();
    fault.happen(program);
    program.desktop.loop.settle();
    EXPECT_EQ(program.takeLog(), fault.log);
    EXPECT_TRUE(program.isShown());
    EXPECT_TRUE(program.desktop.cameraHost.camera("B").streams.empty());
    program.desktop.clickIcon();
    EXPECT_EQ(program.desktop.loop.timerCount(), 0U);
    program.desktop.clickIcon();
    EXPECT_TRUE(program.isShown());
  }
}

TEST(Mirror, isOnScreenWhileItWaitsForACameraThatHangs) {
  Program program;
  program.launchWith({"A"});
  program.desktop.cameraHost.camera("A").behavior = simulated::StartBehavior::HangsForEver;
  Lines order;
  program.desktop.windowSystem.whenShown = [&] {
    order.push_back("shown, streams " + std::to_string(program.desktop.cameraHost.openStreams()));
  };
  program.desktop.cameraHost.whileWaiting = [&] {
    const Rect frame = program.desktop.windowSystem.titled("Vistrel").window().frame();
    order.push_back("waiting at width " + std::to_string(static_cast<int>(frame.width)));
    EXPECT_EQ(program.mirror().captureSession(), nullptr);
  };
  for (int showing = 0; showing < 2; ++showing) {
    program.desktop.clickIcon();
    EXPECT_EQ(std::exchange(order, {}), (Lines{"shown, streams 1", "waiting at width 426"}));
    EXPECT_TRUE(program.isShown());
    program.desktop.clickIcon();
    EXPECT_TRUE(program.desktop.windowSystem.onScreen().empty());
  }
}

TEST(Mirror, centerStageFollowsThePlatformsVersion) {
  using Version = host::SessionHost::Version;
  struct Case {
    Version version;
    bool hasCamera;
    Lines calls;
  };
  const Lines on = {"mode 2", "enabled"};
  const std::vector<Case> cases = {
      {{12, 2, 9}, true, {}}, {{12, 3, 0}, true, on}, {{13, 0, 0}, true, on}, {{13, 0, 0}, false, {}}};
  for (const auto& c : cases) {
    Program program;
    program.desktop.sessionHost.version = c.version;
    if (c.hasCamera) program.desktop.cameraHost.plug("A").device.isCenterStageActive = true;
    program.launch();
    EXPECT_EQ(program.desktop.cameraHost.centerStageCalls, c.calls);
    program.takeLog();
    program.desktop.clickIcon();
    const Lines log = program.takeLog();
    EXPECT_EQ(std::count(log.begin(), log.end(), "🎭 Center Stage is Active"), c.calls.empty() ? 0 : 1);
  }
}

TEST(Mirror, controlsFollowThePointer) {
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
        window.client().dragDidBegin();
        window.client().dragDidBegin();
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

TEST(Mirror, tornOffItIsAWindow) {
  Program program;
  program.launchWith({"A"});
  program.desktop.clickIcon();
  auto& window = program.desktop.windowSystem.titled("Vistrel");
  window.client().dragDidBegin();
  EXPECT_EQ(window.window().kind(), NSWindowKind::Detached);
  program.desktop.clickElsewhere();
  program.desktop.pressKey(kEscape);
  program.desktop.sessionHost.client().reopen();
  EXPECT_TRUE(program.isShown());
  window.client().viewClicked(*window.window().closeButton());
  EXPECT_FALSE(program.isShown());
  EXPECT_EQ(program.desktop.cameraHost.openStreams(), 0U);
  program.desktop.clickIcon();
  EXPECT_EQ(program.desktop.windowSystem.titled("Vistrel").window().kind(), NSWindowKind::Popover);
}

TEST(Mirror, viewsMenuWorksByKeyboard) {
  constexpr std::uint16_t kSpace = 49;
  Program program;
  program.launchWith({"A", "B"});
  program.desktop.clickIcon();
  auto& button = program.mirror().availableCamerasPopupButton();
  program.desktop.pressKey(kSpace);
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
  EXPECT_EQ(program.desktop.cameraHost.openStreams(), 1U);
  button.itemChosen(button.menu()->itemArray().back());
  EXPECT_TRUE(program.desktop.loop.hasQuit());
}

TEST(Mirror, aCameraThatIsGoneCanStillBeChosen) {
  Program program;
  program.launchWith({"A", "B"});
  program.desktop.clickIcon();
  program.desktop.cameraHost.unplug("B");
  program.takeLog();
  auto& button = program.mirror().availableCamerasPopupButton();
  button.itemChosen(button.menu()->itemArray()[2]);
  const Lines log = {"📹🛑 Capture Session Stopped", "⚠️ Saving default camera: B",
                     "the camera is gone", "📹✅ Capture Session Started"};
  EXPECT_EQ(program.takeLog(), log);
  EXPECT_EQ(program.desktop.rows(*button.menu())[2], "---");
  EXPECT_EQ(program.mirror().previewLayer()->connection(), nullptr);
}

TEST(Mirror, withoutACameraItSaysSo) {
  Program program;
  program.launchWith({"A"});
  program.desktop.clickIcon();
  EXPECT_TRUE(program.mirror().noCamerasView().isHidden());
  program.desktop.clickIcon();
  program.desktop.cameraHost.unplug("A");
  program.desktop.clickIcon();
  EXPECT_FALSE(program.mirror().noCamerasView().isHidden());
  EXPECT_TRUE(program.mirror().previewLayer()->isHidden());
  EXPECT_EQ(program.mirror().captureSession(), nullptr);
}

TEST(Mirror, followsLightAndDark) {
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

TEST(Mirror, shortcutTogglesOnReleaseWithoutAHighlight) {
  Program program;
  KeyboardShortcuts::resetForNewProcess();
  KeyboardShortcuts::setShortcut(KeyboardShortcuts::Shortcut(49, 0x1800), shortcutName::toggleShortcutMode());
  program.launchWith({"A"});
  const host::HotKeyCombination combination{49, 0x1800};
  for (const bool opens : {true, false, true}) {
    EXPECT_TRUE(program.desktop.hotKeyHost.send(combination, host::HotKeyPhase::Pressed));
    EXPECT_NE(program.isShown(), opens);
    EXPECT_TRUE(program.desktop.hotKeyHost.send(combination, host::HotKeyPhase::Released));
    EXPECT_EQ(program.isShown(), opens);
    EXPECT_FALSE(program.desktop.tray.isHighlighted);
  }
}

TEST(Mirror, terminationEndsTheObservationsOnce) {
  Program program;
  program.launchWith({"A"});
  const auto window = NSWindow::create({0, 0, 100, 100}, 3, NSBackingStoreType::Buffered, false);
  window->makeKeyAndOrderFront(nullptr);
  int answers = 0;
  std::make_shared<NSAlert>()->beginSheetModalForWindow(*window, [&](NSModalResponse) { ++answers; });
  program.desktop.sessionHost.client().terminateRequested();
  program.desktop.sessionHost.client().terminateRequested();
  EXPECT_TRUE(program.desktop.loop.hasQuit());
  EXPECT_EQ(answers, 1);
  EXPECT_TRUE(NSApplication::shared().windows().empty());
  program.desktop.changeDisplays();
  EXPECT_EQ(program.takeLog(), Lines{});
}

TEST(MirrorDeathTest, missingLayoutStopsTheProgram) {
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
