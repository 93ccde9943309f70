#include "linux/qt/X11Toolkit.h"

#include <qpa/qplatformnativeinterface.h>

#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <cstdint>

#include "linux/x11/Requests.h"

namespace vistrel::qt {

xcb_connection_t* toolkitConnection() {
  const auto* native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return native ? native->connection() : nullptr;
}

xcb_timestamp_t serverTime() {
  auto* native = QGuiApplication::platformNativeInterface();
  void* now = native->nativeResourceForScreen("gettimestamp", QGuiApplication::primaryScreen());
  return static_cast<xcb_timestamp_t>(reinterpret_cast<std::uintptr_t>(now));
}

bool isInputFocusOurs() {
  auto* connection = toolkitConnection();
  const xcb_window_t focus = connection ? x11::focusedWindow(connection) : xcb_window_t{XCB_NONE};
  if (focus <= XCB_INPUT_FOCUS_POINTER_ROOT) return false;
  const auto windows = QGuiApplication::allWindows();
  return std::any_of(windows.begin(), windows.end(),
                     [&](QWindow* window) { return window->handle() && window->winId() == focus; });
}

}  // namespace vistrel::qt
