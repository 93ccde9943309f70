#include "qt/OutsidePresses.h"

#include <qpa/qplatformscreen.h>

#include <QApplication>
#include <QScreen>
#include <QWindow>
#include <algorithm>

#include "qt/Geometry.h"
#include "qt/QtPopUpMenu.h"

namespace vistrel::qt {

namespace {

// The X server speaks of pixels, and screens of different scales have different pixels.
QPoint fromPixels(QPoint pixels) {
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect native = screen->handle()->geometry();
    if (!native.contains(pixels)) continue;
    return screen->geometry().topLeft() +
           (QPointF(pixels - native.topLeft()) / screen->devicePixelRatio()).toPoint();
  }
  return pixels;
}

// Where the tray host embeds the icon in a window of ours, that window is a part of the panel all the same.
bool isTrayIcon(const QWidget& widget) { return widget.inherits("QSystemTrayIconSys"); }

bool got(const QWidget& widget, const x11::RawPress& press) {
  const QWindow* window = widget.isVisible() ? widget.windowHandle() : nullptr;
  if (!window) return false;
  const auto id = static_cast<xcb_window_t>(window->winId());
  return std::find(press.windows.begin(), press.windows.end(), id) != press.windows.end();
}

bool isInMenu(const QWidget& widget, QPoint place) {
  return dynamic_cast<const QtPopUpMenu*>(&widget) && widget.geometry().contains(place);
}

}  // namespace

OutsidePresses::~OutsidePresses() { setClient(nullptr); }

void OutsidePresses::setClient(host::OutsidePressClient* client) {
  client_ = client;
  if (!client_) {
    presses_.setHandler({});
    return;
  }
  presses_.setHandler([this](const x11::RawPress& press) { pressed(press); });
}

void OutsidePresses::pressed(const x11::RawPress& press) {
  const QPoint place = fromPixels({press.x, press.y});
  const auto widgets = QApplication::topLevelWidgets();
  const bool isOurs = std::any_of(widgets.begin(), widgets.end(), [&](const QWidget* widget) {
    return !isTrayIcon(*widget) && (got(*widget, press) || isInMenu(*widget, place));
  });
  if (!isOurs && client_) client_->pressedOutside(fromQt(place));
}

}  // namespace vistrel::qt
