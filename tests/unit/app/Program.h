#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/AppDelegate.h"
#include "appkit/NSApplication.h"
#include "camera/CameraViewController.h"
#include "simulated/SimulatedDesktop.h"

namespace vistrel::test {

/// The program on a simulated desktop. Set the desktop up, then `launch`.
class Program {
 public:
  Program() {
    // The rules are under test here, not the artwork.
    for (const char* icon : {"Icon1", "Icon2", "Icon3"}) {
      desktop.resourceFolder.overrides["images/" + std::string(icon) + ".svg"] = "<svg/>";
    }
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program() {
    if (delegate) NSApplication::shared().setDelegate(nullptr, nullptr);
  }

  void launch() {
    delegate = std::make_unique<AppDelegate>();
    NSApplication::shared().setDelegate(delegate.get(), delegate.get());
    desktop.start();
  }
  void launchWith(const std::vector<std::string>& cameras) {
    for (const auto& name : cameras) desktop.simulatedCameras.plug(name);
    launch();
    desktop.takeLog();
  }

  [[nodiscard]] bool isShown() const { return delegate->popover()->isShown(); }
  [[nodiscard]] CameraViewController& mirror() const {
    return dynamic_cast<CameraViewController&>(*delegate->popover()->contentViewController());
  }
  [[nodiscard]] std::vector<std::string> menuRows() const { return desktop.rows(*delegate->menu()); }
  /// Log lines without those that list the cameras.
  std::vector<std::string> takeLog() {
    auto lines = desktop.takeLog();
    std::erase_if(lines, [](const auto& line) { return line.find("efreshed") != std::string::npos; });
    return lines;
  }

  simulated::SimulatedDesktop desktop{VISTREL_RESOURCES};
  std::unique_ptr<AppDelegate> delegate;
};

}  // namespace vistrel::test
