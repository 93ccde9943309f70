#include "linux/session/Announcer.h"

#include <QAccessible>
#include <QApplication>

#include "linux/qt/AccessibleRole.h"

namespace vistrel::session {

// Qt joins the bus of the accessibility when it is first asked for it. With the first window that is too late
// for what is to be said of that.
Announcer::Announcer() { (void)QAccessible::isActive(); }

void Announcer::announce(const std::string& text) {
  if (!QAccessible::isActive()) return;
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
  QAccessibleAnnouncementEvent event(qApp, QString::fromStdString(text));
#else
  // A new one each time: screen readers remember what the last one was called.
  notification_ = std::make_unique<QWidget>();
  auto* words = new QWidget(notification_.get());
  qt::setAccessibleRole(*words, QAccessible::Notification);
  qt::setAccessibleTexts(*words, text, {});
  QAccessibleEvent event(words, QAccessible::ObjectShow);
#endif
  QAccessible::updateAccessibility(&event);
}

}  // namespace vistrel::session
