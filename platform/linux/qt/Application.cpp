#include "linux/qt/Application.h"

#include <xcb/xcb.h>

#include <QPixmapCache>
#include <QThreadPool>
#include <cstdlib>
#include <string>

#include "base/Program.h"

namespace vistrel::qt {

Result<void> findDisplay() {
  auto* connection = xcb_connect(nullptr, nullptr);
  const bool isReached = xcb_connection_has_error(connection) == 0;
  xcb_disconnect(connection);
  if (isReached) return {};
  const char* display = std::getenv("DISPLAY");
  if (!display || !*display) return Error{"Vistrel needs an X11 display, and DISPLAY is not set"};
  return Error{std::string("Vistrel needs an X11 display, and cannot reach \"") + display + "\""};
}

namespace {

// What Qt keeps for half a minute, pixmaps and threads that painted, is thrown away by timers. Hidden,
// nothing may wake up.
void keepNothingForLater() {
  QPixmapCache::setCacheLimit(0);
  QThreadPool::globalInstance()->setExpiryTimeout(0);
}

}  // namespace

std::unique_ptr<QApplication> makeApplication(int& argumentCount, char** arguments) {
  // Tray menus, global presses and window places exist on X11 only, so a Wayland session serves by XWayland.
  qputenv("QT_QPA_PLATFORM", "xcb");
  // Some desktops' themes bring GL up for the whole process, which nothing here draws with: half of its
  // memory.
  if (!qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION")) qputenv("QT_XCB_GL_INTEGRATION", "none");
  QApplication::setApplicationName(program::kName);
  QApplication::setDesktopFileName(program::kIdentifier);
  QApplication::setQuitOnLastWindowClosed(false);
  // The one style of Qt's own that draws every control from the palette, light or dark.
  QApplication::setStyle("Fusion");
  auto application = std::make_unique<QApplication>(argumentCount, arguments);
  keepNothingForLater();
  return application;
}

}  // namespace vistrel::qt
