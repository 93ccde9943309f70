#include <gtest/gtest.h>

#include <functional>

#include "app/PreferenceKeys.h"
#include "tests/unit/app/Program.h"

namespace vistrel {
namespace {

using test::Program;
using Lines = std::vector<std::string>;

constexpr std::uint64_t kControl = NSEventModifierFlags::kControl;
constexpr std::uint64_t kOption = NSEventModifierFlags::kOption;
const Lines kTwoCameras = {"✓ A", "B", "---", "About Vistrel", "Preferences…", "---", "Quit Vistrel"};

TEST(ContextMenu, ContextMenuShowsOnceAndThenLetsClicksThrough) {
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

TEST(ContextMenu, ChosenCameraIsStoredMarkedAndShownNext) {
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
  EXPECT_TRUE(program.desktop.simulatedCameras.camera("B").streams.front()->isActive());
}

TEST(ContextMenu, TheClickThatClosesAMenuOfTheProgramsOwnOpensNothing) {
  Program program;
  program.launchWith({});
  EXPECT_EQ(program.menuRows()[0], "---");
  program.desktop.clickIcon(kControl);
  program.desktop.tray.client().statusMenuDidClose();
  program.desktop.tray.client().statusIconPressed(backend::PointerButton::Left, 0,
                                                  program.desktop.simulatedSession.pointer);
  EXPECT_FALSE(program.isShown());
  program.desktop.clickIcon(kControl);
  program.desktop.tray.client().statusMenuDidClose();  // by Escape: the next click is one of its own
  program.desktop.clickIcon();
  EXPECT_TRUE(program.isShown());
}

TEST(ContextMenu, MenuHoldsTheCamerasOfItsBuild) {
  Program program;
  program.launchWith({"A", "B"});
  program.desktop.simulatedCameras.unplug("B");
  program.desktop.openMenuFromTray();
  EXPECT_EQ(program.menuRows(), kTwoCameras);
  program.desktop.tray.client().statusMenuDidClose();
  EXPECT_EQ(program.menuRows()[1], "---");
}

}  // namespace
}  // namespace vistrel
