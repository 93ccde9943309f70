#include "linux/session/StartReason.h"

#include <QByteArray>
#include <QFile>

#include "base/Program.h"

namespace vistrel::session {

namespace {

// GNOME's session sets the second one. systemd, which Plasma and GNOME start autostart entries by, names the
// unit.
bool isStartedByLogin() {
  if (qEnvironmentVariableIsSet(program::kAutostartMark) ||
      qEnvironmentVariableIsSet("DESKTOP_AUTOSTART_ID")) {
    return true;
  }
  QFile groups("/proc/self/cgroup");
  return groups.open(QIODevice::ReadOnly) && groups.readAll().contains("@autostart.service");
}

bool isStartedByBus() { return qEnvironmentVariableIsSet("DBUS_STARTER_BUS_TYPE"); }

}  // namespace

bool isStartedBySomebody(bool wasActivated) {
  return !isStartedByLogin() && (!isStartedByBus() || wasActivated);
}

}  // namespace vistrel::session
