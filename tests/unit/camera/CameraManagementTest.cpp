#include "camera/CameraManagement.h"

#include <gtest/gtest.h>

#include "app/PreferenceKeys.h"
#include "simulated/SimulatedDesktop.h"

namespace vistrel {
namespace {

using Lines = std::vector<std::string>;

struct Case {
  std::string description;
  std::vector<std::string> cameras;
  std::string stored;
  std::string selectedId;
  Lines log;
};

Lines withoutRefreshLines(Lines lines) {
  std::erase_if(lines, [](const auto& line) { return line.starts_with("📷"); });
  return lines;
}

TEST(CameraManagement, SettlesTheSelection) {
  const std::string fallback = "Could't find default camera, reverting to system setting";
  const std::string composed = "Caf\u00e9";
  const std::string decomposed = "Cafe\u0301";
  const std::vector<Case> cases = {
      {"nothing stored", {"A", "D"}, "", "camera1", {}},
      {"the stored one", {"A", "D"}, "D", "camera2", {"Detected a user preference: D"}},
      {"the stored one is away", {"A", "D"}, "X", "camera1", {"Detected a user preference: X", fallback}},
      {"case counts", {"A", "d"}, "D", "camera1", {"Detected a user preference: D", fallback}},
      {"the last of one name", {"D", "A", "D"}, "D", "camera3", {"Detected a user preference: D"}},
      {"composed or not",
       {"A", composed},
       decomposed,
       "camera2",
       {"Detected a user preference: " + decomposed}},
      {"an empty name", {"A", ""}, "A", "camera1", {"Detected a user preference: A"}},
      {"no camera", {}, "", "", {}},
      {"no camera, one stored", {}, "D", "", {"Detected a user preference: D", fallback}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.description);
    simulated::SimulatedDesktop desktop(VISTREL_RESOURCES);
    for (const auto& name : c.cameras) desktop.simulatedCameras.plug(name);
    if (!c.stored.empty()) UserDefaults::standard().setString(c.stored, preference::kDefaultCamera);
    const CameraManagement cameras;
    EXPECT_EQ(cameras.selectedDevice() ? cameras.selectedDevice()->uniqueID() : "", c.selectedId);
    EXPECT_EQ(withoutRefreshLines(desktop.takeLog()), c.log);
    EXPECT_EQ(UserDefaults::standard().stringForKey(preference::kDefaultCamera).value_or(""), c.stored);
  }
}

TEST(CameraManagement, ListsWhatIsConnectedAndAwake) {
  const std::string severalLines = "a\nb\177c\u0085d\u2028e\u2029f";
  simulated::SimulatedDesktop desktop(VISTREL_RESOURCES);
  desktop.simulatedCameras.plug("A");
  desktop.simulatedCameras.plug("B").device.isSuspended = true;
  desktop.simulatedCameras.plug("C").device.isConnected = false;
  desktop.simulatedCameras.plug(severalLines);
  CameraManagement cameras;
  const std::string line =
      "📷 Refreshed Devices — available cameras: "
      "[<AVCaptureDevice: A [camera1]>, <AVCaptureDevice: a b c d e f [camera4]>]";
  EXPECT_EQ(desktop.takeLog(), Lines{line});

  const auto selected = cameras.selectedDevice();
  desktop.simulatedCameras.unplug("A");
  desktop.simulatedCameras.unplug(severalLines);
  cameras.refreshDevices();
  EXPECT_EQ(desktop.takeLog(), Lines{"📷 Refreshed Devices — available cameras: []"});
  EXPECT_EQ(cameras.selectedDevice(), selected);
  EXPECT_FALSE(selected->isConnected());
  cameras.selectDefaultCamera();
  EXPECT_EQ(cameras.selectedDevice(), nullptr);
}

TEST(CameraManagement, SavesTheChosenCamera) {
  simulated::SimulatedDesktop desktop(VISTREL_RESOURCES);
  for (const char* name : {"A", "twin", "twin"}) desktop.simulatedCameras.plug(name);
  CameraManagement cameras;
  desktop.takeLog();
  cameras.saveDefaultCamera("nobody");
  EXPECT_EQ(desktop.takeLog(), Lines{});
  EXPECT_EQ(cameras.selectedDevice()->uniqueID(), "camera1");
  EXPECT_EQ(UserDefaults::standard().stringForKey(preference::kDefaultCamera), std::nullopt);
  cameras.saveDefaultCamera("twin");
  const std::string line = "⚠️ Saving default camera: twin";
  EXPECT_EQ(desktop.takeLog(), (Lines{line, line}));
  EXPECT_EQ(cameras.selectedDevice()->uniqueID(), "camera3");
  EXPECT_EQ(UserDefaults::standard().stringForKey(preference::kDefaultCamera), "twin");
}

}  // namespace
}  // namespace vistrel
