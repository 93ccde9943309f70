#include "linux/qt/InputFocus.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <cstdlib>
#include <memory>

namespace vistrel::qt {

namespace {

xcb_window_t focusedWindow() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (!x11) return XCB_NONE;
  auto* connection = x11->connection();
  const auto cookie = xcb_get_input_focus(connection);
  const std::unique_ptr<xcb_get_input_focus_reply_t, decltype(&std::free)> reply(
      xcb_get_input_focus_reply(connection, cookie, nullptr), &std::free);
  return reply ? reply->focus : XCB_NONE;
}

}  // namespace

bool isInputFocusOurs() {
  const xcb_window_t focus = focusedWindow();
  if (focus <= XCB_INPUT_FOCUS_POINTER_ROOT) return false;
  const auto windows = QGuiApplication::allWindows();
  return std::any_of(windows.begin(), windows.end(),
                     [&](QWindow* window) { return window->handle() && window->winId() == focus; });
}

}  // namespace vistrel::qt
