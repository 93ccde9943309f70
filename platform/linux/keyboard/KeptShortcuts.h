#pragma once

#include <QDBusConnection>
#include <QString>

namespace vistrel::keyboard {

/// KDE keeps the key of what a session of the portal has bound when the session has ended, so that a program
/// finds it again, and gives it to no other program. This has it forget the shortcut with this id of ours;
/// where KDE does not run it does nothing. Waits for no answer.
void letKdeForget(const QString& id, const QDBusConnection& bus);

}  // namespace vistrel::keyboard
