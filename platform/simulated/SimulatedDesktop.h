#pragma once

#include <string>
#include <vector>

#include "backend/Backend.h"
#include "simulated/SimulatedCameras.h"
#include "simulated/SimulatedMainLoop.h"
#include "simulated/SimulatedSystem.h"
#include "simulated/SimulatedTray.h"
#include "simulated/SimulatedWindows.h"

namespace vistrel::simulated {

/// A desktop without a screen that a test drives in a few words and that tells what is on it. Installs itself
/// as the backend of the process and collects its log lines. One at a time.
class SimulatedDesktop : public backend::Backend {
 public:
  explicit SimulatedDesktop(const std::string& resourceDirectory);
  SimulatedDesktop(const SimulatedDesktop&) = delete;
  SimulatedDesktop& operator=(const SimulatedDesktop&) = delete;
  ~SimulatedDesktop() override;

  backend::MainLoop& mainLoop() override { return loop; }
  backend::UserFiles& userFiles() override { return files; }
  backend::Resources& resources() override { return resourceFolder; }
  backend::LoginItems& loginItems() override { return login; }
  backend::HotKeys& hotKeys() override { return simulatedHotKeys; }
  backend::Keyboard& keyboard() override { return keys; }
  backend::Session& session() override { return simulatedSession; }
  backend::StatusArea& statusArea() override { return tray; }
  backend::WindowSystem& windows() override { return windowSystem; }
  backend::Cameras& cameras() override { return simulatedCameras; }

  /// The application main loop delivers the launch.
  void start();
  /// A click on the icon: the press as the program hears of it. A popover that is open closes by the press
  /// first, as the window system reports it.
  void clickIcon(std::uint64_t modifiers = 0);
  /// The tray shows the mirrored menu on a secondary click.
  void openMenuFromTray();
  /// The user takes the row of that title in the menu on screen.
  void chooseFromTray(const std::string& title);
  /// A press on the desktop, away from every window of the program.
  void clickElsewhere();
  /// Another program takes the focus.
  void activateOtherApplication();
  void changeDisplays();
  void setDark(bool isDark);
  void pressKey(std::uint16_t keyCode, std::uint64_t modifiers = 0);

  /// Rows of a menu as text: "✓ title", "title", or "---".
  [[nodiscard]] static std::vector<std::string> rows(const NSMenu& menu);
  /// The log lines since the last call.
  std::vector<std::string> takeLog();

  SimulatedMainLoop loop;
  SimulatedUserFiles files;
  SimulatedResources resourceFolder;
  SimulatedLoginItems login;
  SimulatedHotKeys simulatedHotKeys;
  SimulatedKeyboard keys;
  SimulatedSession simulatedSession;
  SimulatedTray tray;
  SimulatedWindows windowSystem;
  SimulatedCameras simulatedCameras{loop};

 private:
  std::vector<std::string> log_;
};

}  // namespace vistrel::simulated
