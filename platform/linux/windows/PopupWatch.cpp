#include "linux/windows/PopupWatch.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

namespace vistrel::windows {

namespace {

bool isPopup(const QObject& object) {
  return object.isWidgetType() && static_cast<const QWidget&>(object).windowType() == Qt::Popup;
}

}  // namespace

PopupWatch::PopupWatch() { qApp->installEventFilter(this); }

// In a later turn: another one may be open by then.
bool PopupWatch::eventFilter(QObject* object, QEvent* event) {
  if (event->type() != QEvent::Hide || !isPopup(*object)) return false;
  const auto tell = [this] {
    if (!QApplication::activePopupWidget()) emit closed();
  };
  QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
  return false;
}

}  // namespace vistrel::windows
