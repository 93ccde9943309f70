#include "linux/tray/HostMessages.h"

#include <QDBusMessage>
#include <QStringList>
#include <utility>

// Exported by Qt for its own tools and declared in no header: it is called in the main thread with each
// message that comes in, before the message is handed to whom it is for.
void qDBusAddSpyHook(void (*hook)(const QDBusMessage& message));

namespace vistrel::tray {

namespace {

// The hook is given nothing of ours, and cannot be taken off again.
HostMessages* listening = nullptr;

bool tellsPlace(const QDBusMessage& message) {
  static const QStringList presses = {"Activate", "ContextMenu", "SecondaryActivate"};
  return presses.contains(message.member()) && message.signature() == u"ii";
}

}  // namespace

HostMessages::HostMessages() {
  listening = this;
  static const bool isHooked = [] {
    qDBusAddSpyHook(&HostMessages::heard);
    return true;
  }();
  Q_UNUSED(isHooked);
}

HostMessages::~HostMessages() { listening = nullptr; }

std::optional<QPoint> HostMessages::takePlace() { return std::exchange(place_, std::nullopt); }

void HostMessages::setTokenHandler(std::function<void(const QString&)> handler) {
  tokenHandler_ = std::move(handler);
}

void HostMessages::heard(const QDBusMessage& message) {
  if (listening) listening->read(message);
}

void HostMessages::read(const QDBusMessage& message) {
  if (message.type() != QDBusMessage::MethodCallMessage) return;
  if (message.interface() != u"org.kde.StatusNotifierItem") return;
  const auto arguments = message.arguments();
  if (tellsPlace(message)) place_ = QPoint(arguments[0].toInt(), arguments[1].toInt());
  const bool isToken = message.member() == u"ProvideXdgActivationToken" && message.signature() == u"s";
  if (isToken && tokenHandler_) tokenHandler_(arguments[0].toString());
}

}  // namespace vistrel::tray
