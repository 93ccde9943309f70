#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "app/PreferenceKeys.h"
#include "tests/unit/app/Program.h"

namespace vistrel {
namespace {

using test::Program;
using Lines = std::vector<std::string>;
using namespace std::chrono_literals;

TEST(MirrorCamera, FirstShowingLogsInOrder) {
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

TEST(MirrorCamera, TakesTheHighestPresetThatTheCameraReaches) {
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
    program.desktop.simulatedCameras.plug("A").sizes = c.sizes;
    program.launch();
    program.desktop.clickIcon();
    EXPECT_EQ(program.desktop.simulatedCameras.lastStart, c.asked);
  }
}

TEST(MirrorCamera, FaultsOfACameraEndInALineAndANeutralGlass) {
  struct Fault {
    std::string description;
    std::function<void(Program&)> prepare;
    std::function<void(Program&)> happen;
    Lines log;
    std::string reason;
  };
  const std::string started = "📹✅ Capture Session Started";
  const std::string error = "📹💥 Capture Session Runtime Error: ";
  const auto camera = [](Program& p) -> simulated::SimulatedCamera& {
    return p.desktop.simulatedCameras.camera("A");
  };
  const auto nothing = [](Program&) {};
  const auto behave = [&](simulated::StartBehavior behavior) {
    return [=](Program& p) { camera(p).behavior = behavior; };
  };
  using simulated::StartBehavior;
  const std::vector<Fault> faults = {
      {"busy",
       [&](Program& p) { camera(p).openError = "A is busy"; },
       nothing,
       {"A is busy", started},
       "A is busy"},
      {"refuses the format",
       behave(StartBehavior::RefusesFormat),
       nothing,
       {error + "the camera refused the format"},
       "the camera refused the format"},
      {"never starts",
       behave(StartBehavior::HangsForEver),
       [](Program& p) {
         p.desktop.loop.advance(9999ms);
         EXPECT_EQ(p.takeLog(), Lines{});
         p.desktop.loop.advance(1ms);
       },
       {error + "The camera sends no pictures."},
       "The camera sends no pictures."},
      {"sends its first picture late",
       nothing,
       [&](Program& p) {
         p.desktop.loop.advance(8s);
         camera(p).streams[0]->sendFrame();
         p.desktop.loop.advance(2500ms);
       },
       {started},
       ""},
      {"waits for a program that stood still",
       nothing,
       [&](Program& p) {
         camera(p).streams[0]->sendFrame();
         p.desktop.loop.advance(1500ms);
         p.desktop.loop.standStill(60s);
         p.desktop.loop.advance(400ms);
         camera(p).streams[0]->sendFrame();
         p.desktop.loop.advance(2s);
       },
       {started},
       ""},
      {"starts late",
       behave(StartBehavior::StartsLater),
       [&](Program& p) { camera(p).streams[0]->begin(); },
       {started},
       {}},
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
       {error + "The camera sends no pictures."},
       "The camera sends no pictures."},
      {"is unplugged",
       nothing,
       [](Program& p) { p.desktop.simulatedCameras.unplug("A"); },
       {started, error + "the camera was unplugged"},
       "the camera was unplugged"},
      {"an error without information",
       nothing,
       [](Program&) { NotificationCenter::defaultCenter().post(AVCaptureSessionRuntimeErrorNotification); },
       {started, error + "n/a"},
       "The camera does not say what is wrong."},
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
    EXPECT_EQ(program.desktop.tray.toolTip, fault.reason.empty() ? "Vistrel" : "Vistrel: " + fault.reason);
    EXPECT_EQ(program.mirror().view().window()->accessibilityHelp(), fault.reason);
    const auto& announced = program.desktop.simulatedSession.announcements;
    EXPECT_EQ(announced.empty() ? "" : announced.back(), fault.reason);
    EXPECT_TRUE(program.desktop.simulatedCameras.camera("B").streams.empty());
    program.desktop.clickIcon();
    EXPECT_EQ(announced.back(), "Mirror closed");
    EXPECT_EQ(program.desktop.tray.toolTip, "Vistrel");
    EXPECT_EQ(program.desktop.loop.timerCount(), 0U);
    program.desktop.clickIcon();
    EXPECT_TRUE(program.isShown());
  }
}

TEST(MirrorCamera, IsOnScreenWhileItWaitsForACameraThatHangs) {
  Program program;
  program.launchWith({"A"});
  program.desktop.simulatedCameras.camera("A").behavior = simulated::StartBehavior::HangsForEver;
  Lines order;
  program.desktop.windowSystem.whenShown = [&] {
    order.push_back("shown, streams " + std::to_string(program.desktop.simulatedCameras.openStreams()));
  };
  program.desktop.simulatedCameras.whileWaiting = [&] {
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

TEST(MirrorCamera, CenterStageFollowsThePlatformsVersion) {
  using Version = backend::Session::Version;
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
    program.desktop.simulatedSession.version = c.version;
    if (c.hasCamera) program.desktop.simulatedCameras.plug("A").device.isCenterStageActive = true;
    program.launch();
    EXPECT_EQ(program.desktop.simulatedCameras.centerStageCalls, c.calls);
    program.takeLog();
    program.desktop.clickIcon();
    const Lines log = program.takeLog();
    EXPECT_EQ(std::count(log.begin(), log.end(), "🎭 Center Stage is Active"), c.calls.empty() ? 0 : 1);
  }
}

TEST(MirrorCamera, ACameraThatIsGoneCanStillBeChosen) {
  Program program;
  program.launchWith({"A", "B"});
  program.desktop.clickIcon();
  program.desktop.simulatedCameras.unplug("B");
  program.takeLog();
  auto& button = program.mirror().availableCamerasPopupButton();
  button.itemChosen(button.menu()->itemArray()[2]);
  const Lines log = {"📹🛑 Capture Session Stopped", "⚠️ Saving default camera: B", "the camera is gone",
                     "📹✅ Capture Session Started"};
  EXPECT_EQ(program.takeLog(), log);
  EXPECT_EQ(program.desktop.rows(*button.menu())[2], "---");
  EXPECT_EQ(program.mirror().previewLayer()->connection(), nullptr);
  EXPECT_EQ(program.desktop.tray.toolTip, "Vistrel: the camera is gone");
  button.itemChosen(button.menu()->itemArray()[1]);
  EXPECT_EQ(program.desktop.tray.toolTip, "Vistrel");
}

TEST(MirrorCamera, WithoutACameraItSaysSo) {
  Program program;
  program.launchWith({"A"});
  program.desktop.clickIcon();
  EXPECT_TRUE(program.mirror().noCamerasView().isHidden());
  program.desktop.clickIcon();
  program.desktop.simulatedCameras.unplug("A");
  program.desktop.clickIcon();
  EXPECT_FALSE(program.mirror().noCamerasView().isHidden());
  EXPECT_TRUE(program.mirror().previewLayer()->isHidden());
  EXPECT_EQ(program.mirror().captureSession(), nullptr);
  EXPECT_EQ(program.desktop.tray.toolTip, "Vistrel: No camera was found.");
}

}  // namespace
}  // namespace vistrel
