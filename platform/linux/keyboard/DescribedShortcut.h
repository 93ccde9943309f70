#pragma once

#include <QDBusArgument>
#include <QSet>
#include <QString>
#include <QVariant>
#include <QVariantMap>

namespace vistrel::keyboard {

/// A shortcut as the portal's messages hold it, `(sa{sv})`.
struct DescribedShortcut {
  QString id;
  QVariantMap facts;

  /// Before the first message that holds one.
  static void registerTypes();
};

QDBusArgument& operator<<(QDBusArgument& to, const DescribedShortcut& shortcut);
const QDBusArgument& operator>>(const QDBusArgument& from, DescribedShortcut& shortcut);

/// The ids in a message's list of them; none where it is something else.
[[nodiscard]] QSet<QString> idsIn(const QVariant& shortcuts);

}  // namespace vistrel::keyboard
