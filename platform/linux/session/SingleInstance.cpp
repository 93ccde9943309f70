#include "linux/session/SingleInstance.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QEvent>
#include <QVariantMap>
#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "base/Program.h"

namespace vistrel::session {

namespace {

constexpr const char* kPath = "/org/vistrel/Vistrel";
constexpr const char* kInterface = "org.freedesktop.Application";
// A busy program answers when it gets to it; one that does not in this time hangs.
constexpr int kHandOverPatience = 5000;
// Between two starts of the program by hand. What comes closer together was one wish.
constexpr std::chrono::milliseconds kOneWish{100};
constexpr int kMostClaims = 5;

// As in the desktop entry.
constexpr std::array kActions = {"preferences"};

constexpr const char* kDescription = R"(<interface name="org.freedesktop.Application">
  <method name="Activate"><arg type="a{sv}" direction="in"/></method>
  <method name="Open"><arg type="as" direction="in"/><arg type="a{sv}" direction="in"/></method>
  <method name="ActivateAction">
    <arg type="s" direction="in"/><arg type="av" direction="in"/><arg type="a{sv}" direction="in"/>
  </method>
</interface>)";

enum class HandOver { Done, NoOwner, NoAnswer };

HandOver handOver(const QDBusConnection& bus) {
  auto message = QDBusMessage::createMethodCall(program::kIdentifier, kPath, kInterface, "Activate");
  message << QVariantMap();
  message.setAutoStartService(false);
  const auto reply = bus.call(message, QDBus::Block, kHandOverPatience);
  if (reply.type() == QDBusMessage::ReplyMessage) return HandOver::Done;
  const auto error = QDBusError(reply).type();
  const bool isGone = error == QDBusError::ServiceUnknown || error == QDBusError::Disconnected ||
                      !bus.interface()->isServiceRegistered(program::kIdentifier);
  return isGone ? HandOver::NoOwner : HandOver::NoAnswer;
}

}  // namespace

// A connection of its own: the shared one hands on no calls before the main loop runs.
SingleInstance::SingleInstance()
    : bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, program::kIdentifier)) {}

// The object stands before the name is asked for: whoever waits for the name may call at once.
SingleInstance::Role SingleInstance::claim() {
  if (!bus_.isConnected()) return Role::WithoutBus;
  bus_.registerVirtualObject(kPath, this);
  for (int claims = 1;; ++claims) {
    const auto reply =
        bus_.interface()->registerService(program::kIdentifier, QDBusConnectionInterface::DontQueueService);
    if (!reply.isValid()) return Role::WithoutBus;
    if (reply.value() == QDBusConnectionInterface::ServiceRegistered) break;
    // A first program that ends meanwhile leaves the name to us.
    const HandOver outcome = handOver(bus_);
    if (outcome == HandOver::Done) return Role::Second;
    if (outcome == HandOver::NoAnswer || claims == kMostClaims) return Role::Unanswered;
  }
  // The bus may have started us for an `Activate`, which is this start and opens nothing. The bus delivers it
  // before it answers any further question. So after this question it is in our queue, and is dealt with
  // here; an `Activate` that comes later is another start.
  // Where somebody looks at each message before it is handed on, it goes by way of the application and of the
  // connection's thread: hence two questions.
  for (int questions = 0; questions < 2; ++questions) {
    (void)bus_.interface()->isServiceRegistered(program::kIdentifier);
    QCoreApplication::sendPostedEvents(qApp, QEvent::MetaCall);
  }
  QCoreApplication::sendPostedEvents(this);
  isClaimed_ = true;
  return Role::First;
}

void SingleInstance::setReopenHandler(std::function<void()> handler) {
  reopen_ = std::move(handler);
  if (reopen_ && std::exchange(isReopenDue_, false)) reopen_();
}

void SingleInstance::activate() {
  const bool isNewWish = !lastActivation_.isValid() || lastActivation_.elapsed() >= kOneWish.count();
  // The one that the bus started us for is no wish of its own.
  if (isClaimed_) lastActivation_.start();
  if (!isNewWish) return;
  if (reopen_) {
    reopen_();
    // What waited meanwhile came with it.
    lastActivation_.start();
    return;
  }
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
