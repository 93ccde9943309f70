#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "app/Popover.h"
#include "app/PreferenceKeys.h"
#include "appkit/NSApplication.h"
#include "appkit/NSMenu.h"
#include "appkit/NSStatusItem.h"
#include "camera/CameraManagement.h"
#include "foundation/NotificationCenter.h"
#include "foundation/UserDefaults.h"

namespace vistrel {

/// The root of everything that lives for the whole run: the popover, the status item with its menu, and the
/// shell's camera catalogue. Main thread only.
class AppDelegate final : public NSObject, public NSApplicationDelegate, public NSMenuDelegate {
 public:
  AppDelegate();

  // NSApplicationDelegate
  void applicationDidFinishLaunching() override;
  bool applicationShouldHandleReopen(bool hasVisibleWindows) override;
  void applicationPerformAction(const std::string& action) override;
  void applicationWillResignActive() override;
  void applicationWillTerminate() override;

  // NSMenuDelegate
  void menuDidClose(NSMenu& menu) override;

  /// Opens the popover, or closes it; the one operation behind the click, the shortcut and a reopen.
  void togglePopover(NSObject* sender);

  [[nodiscard]] Popover* popover() const { return popover_.get(); }
  [[nodiscard]] NSStatusItem* statusBarItem() const { return statusBarItem_.get(); }
  [[nodiscard]] const std::shared_ptr<NSMenu>& menu() const { return menu_; }
  [[nodiscard]] const CameraManagement* cameras() const { return cameras_.get(); }

 private:
  void observeChanges();
  void tellWhyEmpty(const Notification& change);
  void attachShortcut();
  void registerPreferenceDefaults();
  void readDismissPreference();
  void switchCenterStageOn();
  void setUpStatusItem();
  void clickedStatusBarButton();
  void openMenu();
  void postMouseUpAtIcon();
  void buildMenu();
  void refreshMenu();
  void updateDataWithSender();
  void switchCameraInputWithSender(NSObject* sender);

  std::unique_ptr<Popover> popover_;
  std::shared_ptr<NSStatusItem> statusBarItem_;
  std::shared_ptr<NSMenu> menu_;
  UserDefaults& defaults_;
  static constexpr const auto& availableIcons = preference::kIcons;
  std::int64_t selectedIconIndex_ = 0;
  bool dismissOnClick_ = true;
  std::unique_ptr<CameraManagement> cameras_;
  ObservationToken dataObserver_;
  ObservationToken displayObserver_;
  ObservationToken emptinessObserver_;
};

/// Hands control to the application's main loop with the program's own delegate; a backend is installed
/// before. Returns the exit status.
int runApplication();

}  // namespace vistrel
