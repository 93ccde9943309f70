#include "linux/windows/X11Windows.h"

#include <qpa/qplatformnativeinterface.h>
#include <xcb/shape.h>

#include <QGuiApplication>
#include <QScreen>
#include <array>
#include <vector>

#include "linux/qt/X11Toolkit.h"
#include "linux/x11/Requests.h"

namespace vistrel::windows {

namespace {

// Values of the window manager specification's messages.
constexpr std::uint32_t kRemoveState = 0;
constexpr std::uint32_t kAddState = 1;
constexpr std::uint32_t kFromApplication = 1;
constexpr std::uint32_t kFromUser = 2;

xcb_window_t idOf(const QWindow& window) { return static_cast<xcb_window_t>(window.winId()); }

}  // namespace

X11Windows::X11Windows() {
  connection_ = qt::toolkitConnection();
  if (!connection_) return;
  isXWayland_ = x11::isXWayland(connection_);
  state_ = x11::atomOf(connection_, "_NET_WM_STATE");
  activeWindow_ = x11::atomOf(connection_, "_NET_ACTIVE_WINDOW");
  skipTaskbar_ = x11::atomOf(connection_, "_NET_WM_STATE_SKIP_TASKBAR");
  skipPager_ = x11::atomOf(connection_, "_NET_WM_STATE_SKIP_PAGER");
}

bool X11Windows::areWindowsBlended() const {
  return isXWayland_ && x11::isOwned(connection_, "_NET_WM_CM_S0");
}

void X11Windows::setListed(const QWindow& window, ListedAs listed) {
  if (!connection_) return;
  if (window.isVisible()) {
    // A window that belongs to another one is left out of lists whatever its state says.
    if (listed == ListedAs::Window) standAlone(window);
    askForState(idOf(window), listed);
  } else {
    writeState(idOf(window), listed);
  }
}

void X11Windows::standAlone(const QWindow& window) {
  if (connection_) xcb_delete_property(connection_, idOf(window), XCB_ATOM_WM_TRANSIENT_FOR);
}

// Before a window is mapped its state is its own to write; Qt adds what it wants to what it finds.
void X11Windows::writeState(xcb_window_t window, ListedAs listed) {
  const std::array<xcb_atom_t, 2> states = {skipTaskbar_, skipPager_};
  const std::uint32_t count = listed == ListedAs::Accessory ? states.size() : 0;
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, state_, XCB_ATOM_ATOM, 32, count,
                      states.data());
}

// Afterwards the window manager owns it.
void X11Windows::askForState(xcb_window_t window, ListedAs listed) {
  const std::uint32_t change = listed == ListedAs::Accessory ? kAddState : kRemoveState;
  x11::askManager(connection_, window, state_, {change, skipTaskbar_, skipPager_, kFromApplication});
}

void X11Windows::activate(const QWindow& window) {
  if (!connection_) return;
  x11::askManager(connection_, idOf(window), activeWindow_, {kFromUser, qt::serverTime(), XCB_NONE});
}

void X11Windows::setShape(const QWindow& window, const QRegion& shape) {
  if (!connection_) return;
  std::vector<xcb_rectangle_t> rectangles;
  for (const QRect& r : shape) {
    rectangles.push_back({static_cast<std::int16_t>(r.x()), static_cast<std::int16_t>(r.y()),
                          static_cast<std::uint16_t>(r.width()), static_cast<std::uint16_t>(r.height())});
  }
  xcb_shape_rectangles(connection_, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_YX_BANDED,
                       idOf(window), 0, 0, static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
}

void X11Windows::setBackground(const QWindow& window, const QColor& color) {
  if (!connection_) return;
  const std::uint32_t pixel = color.rgba();
  xcb_change_window_attributes(connection_, idOf(window), XCB_CW_BACK_PIXEL, &pixel);
}

void X11Windows::flush() {
  if (connection_) xcb_flush(connection_);
}

void X11Windows::noteUserAction() {
  QScreen* screen = QGuiApplication::primaryScreen();
  if (!connection_ || !screen) return;
  const xcb_timestamp_t now = qt::serverTime();
  using SetTime = void (*)(QScreen*, xcb_timestamp_t);
  for (const char* name : {"setapptime", "setappusertime"}) {
    auto* native = QGuiApplication::platformNativeInterface();
    const auto set = reinterpret_cast<void (*)()>(native->nativeResourceFunctionForScreen(name));
    if (set) reinterpret_cast<SetTime>(set)(screen, now);
  }
}

bool X11Windows::hasFocus(const QWindow& window) const {
  return connection_ && x11::focusedWindow(connection_) == idOf(window);
}

X11Windows::Presence X11Windows::presenceOf(const QWindow& window) const {
  if (!connection_) return Presence::Viewable;
  const auto state = x11::mapStateOf(connection_, idOf(window));
  if (!state) return Presence::None;
  return *state == XCB_MAP_STATE_VIEWABLE ? Presence::Viewable : Presence::Unviewable;
}

}  // namespace vistrel::windows
