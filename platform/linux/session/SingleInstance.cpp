#include "linux/session/SingleInstance.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QVariantMap>
#include <algorithm>
#include <array>
#include <utility>

#include "base/Program.h"

namespace vistrel::session {

namespace {

constexpr const char* kPath = "/org/vistrel/Vistrel";
constexpr const char* kInterface = "org.freedesktop.Application";
// A first program that is busy gets the message all the same; the second one does not wait for it.
constexpr int kHandOverPatience = 500;

// As in the desktop entry.
constexpr std::array kActions = {"preferences"};

constexpr const char* kDescription = R"(<interface name="org.freedesktop.Application">
  <method name="Activate"><arg type="a{sv}" direction="in"/></method>
  <method name="Open"><arg type="as" direction="in"/><arg type="a{sv}" direction="in"/></method>
  <method name="ActivateAction">
    <arg type="s" direction="in"/><arg type="av" direction="in"/><arg type="a{sv}" direction="in"/>
  </method>
</interface>)";

void handOver(const QDBusConnection& bus) {
  auto message = QDBusMessage::createMethodCall(program::kIdentifier, kPath, kInterface, "Activate");
  message << QVariantMap();
  bus.call(message, QDBus::Block, kHandOverPatience);
}

}  // namespace

// A connection of its own: the shared one hands on no calls before the main loop runs.
SingleInstance::SingleInstance()
    : bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, program::kIdentifier)) {}

// The object stands before the name is asked for: whoever waits for the name may call at once.
SingleInstance::Role SingleInstance::claim() {
  if (!bus_.isConnected()) return Role::WithoutBus;
  bus_.registerVirtualObject(kPath, this);
  const auto reply =
      bus_.interface()->registerService(program::kIdentifier, QDBusConnectionInterface::DontQueueService);
  if (!reply.isValid()) return Role::WithoutBus;
  if (reply.value() != QDBusConnectionInterface::ServiceRegistered) {
    handOver(bus_);
    return Role::Second;
  }
  // The bus may have started us for an `Activate`, which is this start and opens nothing. The bus delivers it
  // before it answers any further question. So after this question it is in our queue, and is dealt with
  // here; an `Activate` that comes later is another start.
  (void)bus_.interface()->isServiceRegistered(program::kIdentifier);
  QCoreApplication::sendPostedEvents(this);
  isClaimed_ = true;
  return Role::First;
}

void SingleInstance::setReopenHandler(std::function<void()> handler) {
  reopen_ = std::move(handler);
  if (reopen_ && std::exchange(isReopenDue_, false)) reopen_();
}

void SingleInstance::activate() {
  if (reopen_) return reopen_();
  isReopenDue_ = isClaimed_;
  wasActivated_ = wasActivated_ || !isClaimed_;
}

void SingleInstance::setActionHandler(std::function<void(const std::string&)> handler) {
  action_ = std::move(handler);
  if (!action_) return;
  for (const auto& action : std::exchange(actionsDue_, {})) action_(action);
}

bool SingleInstance::activateAction(const QDBusMessage& message, const QDBusConnection& connection) {
  const std::string action = message.arguments().value(0).toString().toStdString();
  if (std::find(kActions.begin(), kActions.end(), action) == kActions.end()) {
    return connection.send(message.createErrorReply(QDBusError::InvalidArgs, "Vistrel has no such action"));
  }
  if (message.isReplyRequired()) connection.send(message.createReply());
  if (action_) {
    action_(action);
  } else {
    actionsDue_.push_back(action);
  }
  return true;
}

QString SingleInstance::introspect(const QString& /*path*/) const { return kDescription; }

bool SingleInstance::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  if (message.interface() != kInterface) return false;
  if (message.member() == "ActivateAction") return activateAction(message, connection);
  if (message.member() != "Activate" && message.member() != "Open") return false;
  if (message.isReplyRequired()) connection.send(message.createReply());
  activate();
  return true;
}

}  // namespace vistrel::session
