#include "linux/windows/HidingWatch.h"

#include <QCoreApplication>
#include <algorithm>
#include <cstdint>
#include <vector>

#include "linux/qt/X11Toolkit.h"
#include "linux/x11/Requests.h"

namespace vistrel::windows {

namespace {

constexpr std::uint32_t kOnAllDesktops = 0xFFFFFFFF;
constexpr std::uint32_t kMostValues = 64;

using Values = std::vector<std::uint32_t>;

Values propertyOf(xcb_window_t window, xcb_atom_t property) {
  auto* connection = qt::toolkitConnection();
  const auto question = xcb_get_property(connection, 0, window, property, XCB_ATOM_ANY, 0, kMostValues);
  const x11::Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, question, nullptr));
  if (!reply || reply->format != 32) return {};
  const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {first, first + reply->value_len};
}

xcb_window_t root() { return x11::rootOf(qt::toolkitConnection()); }

}  // namespace

HidingWatch::HidingWatch() {
  auto* connection = qt::toolkitConnection();
  if (!connection) return;
  desktopShown_ = x11::atomOf(connection, "_NET_SHOWING_DESKTOP");
  currentDesktop_ = x11::atomOf(connection, "_NET_CURRENT_DESKTOP");
  desktop_ = x11::atomOf(connection, "_NET_WM_DESKTOP");
  state_ = x11::atomOf(connection, "_NET_WM_STATE");
  hidden_ = x11::atomOf(connection, "_NET_WM_STATE_HIDDEN");
  manager_ = x11::atomOf(connection, "_NET_SUPPORTING_WM_CHECK");
  qApp->installNativeEventFilter(this);
}

HidingWatch::~HidingWatch() { qApp->removeNativeEventFilter(this); }

// Some managers call a window on another virtual desktop an icon, as if it were minimized, and some leave it
// mapped. A minimized one they call hidden besides.
std::optional<backend::Hiding> HidingWatch::hidingOf(const QWindow& window) const {
  if (!qt::toolkitConnection()) return std::nullopt;
  if (isDesktopShown()) return backend::Hiding::DesktopShown;
  if (isOnOtherDesktop(window)) return backend::Hiding::DesktopLeft;
  if (!window.windowStates().testFlag(Qt::WindowMinimized)) return std::nullopt;
  const Values states = propertyOf(static_cast<xcb_window_t>(window.winId()), state_);
  const bool isHidden = std::find(states.begin(), states.end(), hidden_) != states.end();
  return isHidden ? backend::Hiding::Minimized : backend::Hiding::DesktopLeft;
}

// One that composes the windows itself. With any other the numbers alone say less: where each monitor has a
// desktop of its own, or several are shown together, the current one is that of the focus.
bool HidingWatch::leavesWindowsMapped() const {
  auto* connection = qt::toolkitConnection();
  const xcb_window_t composer = x11::ownerOf(connection, "_NET_WM_CM_S0");
  const Values manager = propertyOf(root(), manager_);
  const std::uint32_t client = ~xcb_get_setup(connection)->resource_id_mask;
  return composer != XCB_NONE && !manager.empty() && (composer & client) == (manager.front() & client);
}

bool HidingWatch::isOnOtherDesktop(const QWindow& window) const {
  const auto id = static_cast<xcb_window_t>(window.winId());
  const bool isViewable = x11::mapStateOf(qt::toolkitConnection(), id) == XCB_MAP_STATE_VIEWABLE;
  if (isViewable && !leavesWindowsMapped()) return false;
  const Values own = propertyOf(id, desktop_);
  if (own.empty() || own.front() == kOnAllDesktops) return false;
  const Values current = propertyOf(root(), currentDesktop_);
  return !current.empty() && current.front() != own.front();
}

bool HidingWatch::isDesktopShown() const {
  if (!qt::toolkitConnection()) return false;
  const Values shown = propertyOf(root(), desktopShown_);
  return !shown.empty() && shown.front() != 0;
}

void HidingWatch::endShownDesktop() const {
  if (auto* connection = qt::toolkitConnection()) x11::askManager(connection, root(), desktopShown_, {});
}

// Left to themselves some managers open it where another window of the program is.
void HidingWatch::comeAlong(const QWindow& window) const {
  auto* connection = qt::toolkitConnection();
  if (!connection) return;
  const Values current = propertyOf(root(), currentDesktop_);
  if (current.empty()) return;
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window.winId()), desktop_,
                      XCB_ATOM_CARDINAL, 32, 1, current.data());
}

bool HidingWatch::nativeEventFilter(const QByteArray& /*kind*/, void* message, qintptr* /*result*/) {
  const auto& event = *static_cast<xcb_generic_event_t*>(message);
  const auto type = event.response_type & 0x7f;
  if (type == XCB_UNMAP_NOTIFY || type == XCB_MAP_NOTIFY) emit changed();
  if (type != XCB_PROPERTY_NOTIFY) return false;
  const xcb_atom_t atom = reinterpret_cast<const xcb_property_notify_event_t&>(event).atom;
  if (atom == desktopShown_ || atom == currentDesktop_ || atom == desktop_ || atom == state_) emit changed();
  return false;
}

}  // namespace vistrel::windows
