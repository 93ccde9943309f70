#include "app/CameraMenu.h"

#include "appkit/NSMenu.h"
#include "camera/CameraManagement.h"

namespace vistrel {

void addCameraItems(NSMenu& menu, const CameraManagement& cameras) {
  for (const auto& device : cameras.availableCameras()) {
    auto item = std::make_shared<NSMenuItem>(device->localizedName(), action::kSwitchCameraInput);
    item->setState(cameras.isSelected(item->title()) ? NSControlState::On : NSControlState::Off);
    menu.addItem(item);
  }
}

void addCommandItems(NSMenu& menu) {
  menu.addItem(NSMenuItem::separatorItem());
  menu.addItem(std::make_shared<NSMenuItem>("About Vistrel", action::kOpenAbout));
  menu.addItem(std::make_shared<NSMenuItem>("Preferences…", action::kOpenPreferences));
  menu.addItem(NSMenuItem::separatorItem());
  menu.addItem(std::make_shared<NSMenuItem>("Quit Vistrel", action::kQuit));
}

}  // namespace vistrel
