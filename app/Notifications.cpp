#include "app/Notifications.h"

namespace vistrel::notification {

const std::string& dataChanged() {
  static const std::string name = "dataChanged";
  return name;
}

const std::string& mirroringChanged() {
  static const std::string name = "mirroringChanged";
  return name;
}

const std::string& windowDetached() {
  static const std::string name = "windowDetached";
  return name;
}

const std::string& interfaceThemeChanged() {
  static const std::string name = "AppleInterfaceThemeChangedNotification";
  return name;
}

}  // namespace vistrel::notification
