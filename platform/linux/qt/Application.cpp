#include "linux/qt/Application.h"

#include <xcb/xcb.h>

#include <QPixmapCache>
#include <QThreadPool>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
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

constexpr std::array kWordsOfGl = {"Cannot create platform OpenGL context",
                                   "fallback to QtQuick software backend"};

// A desktop's theme that wants GL complains of what this program has decided.
void tellAllButGl(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  const auto isSaid = [&](const char* words) { return message.contains(QLatin1String(words)); };
  if (std::any_of(kWordsOfGl.begin(), kWordsOfGl.end(), isSaid)) return;
  std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
}

/// Some desktops' themes bring GL up for the whole process, which nothing here draws with: half of its
/// memory.
std::unique_ptr<QApplication> makeWithoutGl(int& argumentCount, char** arguments) {
  if (qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION")) {
    return std::make_unique<QApplication>(argumentCount, arguments);
  }
  qputenv("QT_XCB_GL_INTEGRATION", "none");
  const QtMessageHandler before = qInstallMessageHandler(tellAllButGl);
  auto application = std::make_unique<QApplication>(argumentCount, arguments);
  qInstallMessageHandler(before);
  return application;
}

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
  QApplication::setApplicationName(program::kName);
  QApplication::setDesktopFileName(program::kIdentifier);
  QApplication::setQuitOnLastWindowClosed(false);
  // The one style of Qt's own that draws every control from the palette, light or dark.
  QApplication::setStyle("Fusion");
  auto application = makeWithoutGl(argumentCount, arguments);
  keepNothingForLater();
  return application;
}

}  // namespace vistrel::qt
