#include "linux/qt/X11Toolkit.h"

#include <qpa/qplatformnativeinterface.h>
#include <qpa/qplatformscreen.h>
#include <qpa/qwindowsysteminterface.h>

#include <QGuiApplication>
#include <QScreen>
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

QPoint fromPixels(QPoint pixels) {
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect native = screen->handle()->geometry();
    if (!native.contains(pixels)) continue;
    const QPointF way = QPointF(pixels - native.topLeft()) / screen->devicePixelRatio();
    return screen->geometry().topLeft() + way.toPoint();
  }
  return pixels;
}

QRect toPixels(const QRect& part) {
  const QScreen* screen = QGuiApplication::screenAt(part.center());
  if (!screen) return part;
  const double scale = screen->devicePixelRatio();
  const QPointF way = QPointF(part.topLeft() - screen->geometry().topLeft()) * scale;
  return {screen->handle()->geometry().topLeft() + way.toPoint(), (QSizeF(part.size()) * scale).toSize()};
}

bool isInputFocusOurs() {
  auto* connection = toolkitConnection();
  const xcb_window_t focus = connection ? x11::focusedWindow(connection) : xcb_window_t{XCB_NONE};
  if (focus <= XCB_INPUT_FOCUS_POINTER_ROOT) return false;
  const auto windows = QGuiApplication::allWindows();
  return std::any_of(windows.begin(), windows.end(),
                     [&](QWindow* window) { return window->handle() && window->winId() == focus; });
}

void endFocusOfHidden() {
  const QWindow* const focused = QGuiApplication::focusWindow();
  if (!focused || focused->isVisible()) return;
  using System = QWindowSystemInterface;
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
  System::handleFocusWindowChanged<System::SynchronousDelivery>(nullptr);
#else
  System::handleWindowActivated<System::SynchronousDelivery>(nullptr);
#endif
}

}  // namespace vistrel::qt
