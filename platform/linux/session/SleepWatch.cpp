#include "linux/session/SleepWatch.h"

#include <QDBusConnection>

#include "linux/session/Logind.h"

namespace vistrel::session {

SleepWatch::SleepWatch(std::function<void(bool)> handler) : handler_(std::move(handler)) {
  QDBusConnection::systemBus().connect(logind::kService, logind::kPath, logind::kManager, "PrepareForSleep",
                                       this, SLOT(prepareForSleep(bool)));
}

}  // namespace vistrel::session
