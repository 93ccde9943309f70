#include "linux/keyboard/PopupKeys.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

namespace vistrel::keyboard {

namespace {

bool isPopup(const QObject& object) {
  return object.isWidgetType() && static_cast<const QWidget&>(object).windowType() == Qt::Popup;
}

}  // namespace

PopupKeys::PopupKeys(HotKeyGrabs& hotKeys, X11Keyboard& keyboard) : hotKeys_(hotKeys), keyboard_(keyboard) {
  qApp->installNativeEventFilter(this);
  qApp->installEventFilter(this);
}

PopupKeys::~PopupKeys() { qApp->removeNativeEventFilter(this); }

bool PopupKeys::nativeEventFilter(const QByteArray& /*type*/, void* message, qintptr* /*result*/) {
  return QApplication::activePopupWidget() && hotKeys_.offer(*static_cast<xcb_generic_event_t*>(message));
}

// In a later turn: the toolkit may be in the midst of giving the keyboard back.
bool PopupKeys::eventFilter(QObject* object, QEvent* event) {
  if (event->type() == QEvent::Hide && isPopup(*object)) {
    QMetaObject::invokeMethod(this, [this] { popupClosed(); }, Qt::QueuedConnection);
  }
  return false;
}

// A submenu may have closed, or another menu be open by now.
void PopupKeys::popupClosed() {
  if (!QApplication::activePopupWidget()) keyboard_.toolkitGaveBack();
}

}  // namespace vistrel::keyboard
