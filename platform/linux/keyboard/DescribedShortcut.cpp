#include "linux/keyboard/DescribedShortcut.h"

#include <QDBusMetaType>
#include <QList>

namespace vistrel::keyboard {

void DescribedShortcut::registerTypes() {
  qDBusRegisterMetaType<DescribedShortcut>();
  qDBusRegisterMetaType<QList<DescribedShortcut>>();
}

QDBusArgument& operator<<(QDBusArgument& to, const DescribedShortcut& shortcut) {
  to.beginStructure();
  to << shortcut.id << shortcut.facts;
  to.endStructure();
  return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, DescribedShortcut& shortcut) {
  from.beginStructure();
  from >> shortcut.id >> shortcut.facts;
  from.endStructure();
  return from;
}

QSet<QString> idsIn(const QVariant& shortcuts) {
  QSet<QString> ids;
  if (shortcuts.userType() != qMetaTypeId<QDBusArgument>()) return ids;
  const auto list = shortcuts.value<QDBusArgument>();
  if (list.currentSignature() != "a(sa{sv})") return ids;
  for (const auto& shortcut : qdbus_cast<QList<DescribedShortcut>>(list)) ids.insert(shortcut.id);
  return ids;
}

}  // namespace vistrel::keyboard
