#include "qt/Application.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <string>

namespace vistrel::qt {

namespace {

Result<void> findDisplay() {
  auto* connection = xcb_connect(nullptr, nullptr);
  const bool isReached = xcb_connection_has_error(connection) == 0;
  xcb_disconnect(connection);
  if (isReached) return {};
  const char* display = std::getenv("DISPLAY");
  if (!display || !*display) return Error{"Vistrel needs an X11 display, and DISPLAY is not set"};
  return Error{std::string("Vistrel needs an X11 display, and cannot reach \"") + display + "\""};
}

}  // namespace

Result<std::unique_ptr<QApplication>> makeApplication(int& argumentCount, char** arguments) {
  if (const auto display = findDisplay(); !display) return display.error();
  // Tray menus, global presses and window places exist on X11 only, so a Wayland session serves by XWayland.
  qputenv("QT_QPA_PLATFORM", "xcb");
  QApplication::setApplicationName("Vistrel");
  QApplication::setDesktopFileName("org.vistrel.Vistrel");
  QApplication::setQuitOnLastWindowClosed(false);
  // The one style of Qt's own that draws every control from the palette, light or dark.
  QApplication::setStyle("Fusion");
  return std::make_unique<QApplication>(argumentCount, arguments);
}

}  // namespace vistrel::qt
