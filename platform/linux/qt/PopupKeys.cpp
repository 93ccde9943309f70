#include "qt/PopupKeys.h"

#include <QApplication>

namespace vistrel::qt {

PopupKeys::PopupKeys(x11::HotKeyGrabs& hotKeys) : hotKeys_(hotKeys) { qApp->installNativeEventFilter(this); }

PopupKeys::~PopupKeys() { qApp->removeNativeEventFilter(this); }

bool PopupKeys::nativeEventFilter(const QByteArray& /*type*/, void* message, qintptr* /*result*/) {
  return QApplication::activePopupWidget() && hotKeys_.offer(*static_cast<xcb_generic_event_t*>(message));
}

}  // namespace vistrel::qt
