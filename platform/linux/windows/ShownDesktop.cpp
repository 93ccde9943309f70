#include "linux/windows/ShownDesktop.h"

#include <QCoreApplication>

#include "linux/qt/X11Toolkit.h"
#include "linux/x11/Requests.h"

namespace vistrel::windows {

ShownDesktop::ShownDesktop() {
  if (!qt::toolkitConnection()) return;
  state_ = x11::atomOf(qt::toolkitConnection(), "_NET_SHOWING_DESKTOP");
  qApp->installNativeEventFilter(this);
}

ShownDesktop::~ShownDesktop() { qApp->removeNativeEventFilter(this); }

bool ShownDesktop::isShown() const {
  auto* connection = qt::toolkitConnection();
  if (!connection) return false;
  const auto question =
      xcb_get_property(connection, 0, x11::rootOf(connection), state_, XCB_ATOM_CARDINAL, 0, 1);
  const x11::Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, question, nullptr));
  if (!reply || reply->value_len == 0) return false;
  return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get())) != 0;
}

void ShownDesktop::end() const {
  auto* connection = qt::toolkitConnection();
  if (!connection) return;
  x11::askManager(connection, x11::rootOf(connection), state_, {});
}

bool ShownDesktop::nativeEventFilter(const QByteArray& /*type*/, void* message, qintptr* /*result*/) {
  const auto& event = *static_cast<xcb_generic_event_t*>(message);
  if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return false;
  if (reinterpret_cast<const xcb_property_notify_event_t&>(event).atom == state_) emit changed();
  return false;
}

}  // namespace vistrel::windows
