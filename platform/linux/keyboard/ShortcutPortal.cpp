#include "linux/keyboard/ShortcutPortal.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "base/Program.h"
#include "linux/keyboard/DescribedShortcut.h"
#include "linux/keyboard/KeptShortcuts.h"

namespace vistrel::keyboard {

namespace {

constexpr const char* kService = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kShortcuts = "org.freedesktop.portal.GlobalShortcuts";
constexpr const char* kRequest = "org.freedesktop.portal.Request";
constexpr const char* kSession = "org.freedesktop.portal.Session";
constexpr const char* kRegistry = "org.freedesktop.host.portal.Registry";
constexpr const char* kSessionToken = "vistrel";
constexpr uint kCancelledByUser = 1;
constexpr uint kFailed = 2;

QDBusMessage callOf(const QString& path, const char* interface, const char* method) {
  return QDBusMessage::createMethodCall(kService, path, interface, method);
}

QString sessionOf(const QDBusMessage& message) {
  return message.arguments().value(0).value<QDBusObjectPath>().path();
}

/// The window that the desktop's question belongs to, if the user is at one.
QString parentWindow() {
  const QWindow* window = QGuiApplication::focusWindow();
  return window ? QStringLiteral("x11:%1").arg(window->winId(), 0, 16) : QString();
}

bool isWithoutAnswer(const QDBusMessage& reply) {
  return reply.type() == QDBusMessage::ErrorMessage && QDBusError(reply).type() == QDBusError::NoReply;
}

}  // namespace

ShortcutPortal::ShortcutPortal(Handlers handlers) : handlers_(std::move(handlers)) {
  DescribedShortcut::registerTypes();
}

void ShortcutPortal::serve(QList<PortalShortcut> shortcuts) {
  const auto earlier = std::exchange(wanted_, std::move(shortcuts));
  removed_ = wanted_.isEmpty() ? earlier : QList<PortalShortcut>();
  if (!bus_ && wanted_.isEmpty()) return;
  if (!bus_ && !open()) return handlers_.didRefuse();
  // The steps before the binding look at what is wanted when they are done.
  const bool isUnderWay = step_ == Step::Identifying || step_ == Step::Closing || step_ == Step::Creating;
  if (!isUnderWay) startOver();
}

// A connection of its own: the portal takes the identity as the first call of a connection or not at all, and
// the toolkit speaks with the portal too.
bool ShortcutPortal::open() {
  auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, kShortcuts);
  if (!bus.isConnected()) return false;
  bus_ = bus;
  bus.connect(kService, {}, kRequest, "Response", this, SLOT(responded(QDBusMessage)));
  bus.connect(kService, {}, kSession, "Closed", this, SLOT(sessionClosed(QDBusMessage)));
  bus.connect(kService, kPath, kShortcuts, "Activated", this, SLOT(activated(QDBusMessage)));
  bus.connect(kService, kPath, kShortcuts, "Deactivated", this, SLOT(deactivated(QDBusMessage)));
  bus.connect(kService, kPath, kShortcuts, "ShortcutsChanged", this, SLOT(shortcutsChanged(QDBusMessage)));
  owner_ = std::make_unique<QDBusServiceWatcher>(kService, bus, QDBusServiceWatcher::WatchForOwnerChange);
  connect(
      owner_.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
      [this](const QString& /*service*/, const QString& from, const QString& to) { ownerChanged(from, to); });
  return true;
}

void ShortcutPortal::ownerChanged(const QString& oldOwner, const QString& newOwner) {
  // The call that identifies us may be the one that started it.
  if (oldOwner.isEmpty() && step_ == Step::Identifying) return;
  reset();
  if (newOwner.isEmpty()) {
    handlers_.didRefuse();
  } else if (!wanted_.isEmpty()) {
    startOver();
  }
}

void ShortcutPortal::reset() {
  ++portals_;
  session_.clear();
  request_.clear();
  isKnown_.reset();
  step_ = Step::None;
  serveNow({});
}

void ShortcutPortal::startOver() {
  serveNow({});
  if (!session_.isEmpty()) return closeSession();
  step_ = Step::None;
  if (wanted_.isEmpty()) return forget();
  if (askable().isEmpty()) return handlers_.didRefuse();
  if (!isKnown_) return identify();
  createSession();
}

// An empty list of shortcuts would say it too, but ends xdg-desktop-portal 1.20 for everybody.
void ShortcutPortal::forget() {
  for (const auto& shortcut : std::exchange(removed_, {})) letKdeForget(shortcut.id, *bus_);
}

// What it answers does not matter: older portals know no such call, and one that does not know our desktop
// entry may serve us nonetheless.
void ShortcutPortal::identify() {
  auto message = callOf(kPath, kRegistry, "Register");
  message << QString(program::kIdentifier) << QVariantMap();
  call(Step::Identifying, message, &ShortcutPortal::identified);
}

void ShortcutPortal::identified(const QDBusMessage& reply) {
  isKnown_ = reply.type() == QDBusMessage::ReplyMessage;
  if (isWithoutAnswer(reply)) handlers_.didRefuse();
  startOver();
}

void ShortcutPortal::closeSession() {
  if (!request_.isEmpty()) bus_->send(callOf(request_, kRequest, "Close"));
  request_.clear();
  call(Step::Closing, callOf(session_, kSession, "Close"), &ShortcutPortal::sessionLeft);
}

void ShortcutPortal::sessionLeft(const QDBusMessage& /*reply*/) {
  session_.clear();
  startOver();
}

// A portal that learns no application id from us stores the shortcuts under this word, so it never changes
// there. Where it knows us each portal gets a word of its own: KDE's part of it outlives one that died, still
// has that one's session, and ends the next of the same name.
QString ShortcutPortal::sessionToken() const {
  const QString token = kSessionToken;
  return isKnown_ == true && portals_ > 0 ? token + QString::number(portals_) : token;
}

void ShortcutPortal::createSession() {
  auto options = requestOptions();
  options["session_handle_token"] = sessionToken();
  auto message = callOf(kPath, kShortcuts, "CreateSession");
  message << options;
  call(Step::Creating, message, &ShortcutPortal::requested);
}

void ShortcutPortal::created(const QVariantMap& results) {
  session_ = results.value("session_handle").toString();
  if (session_.isEmpty()) {
    step_ = Step::Settled;
    return handlers_.didRefuse();
  }
  if (askable().isEmpty()) return startOver();
  bind();
}

void ShortcutPortal::bind() {
  QList<DescribedShortcut> list;
  for (const auto& shortcut : askable()) {
    const QVariantMap facts = {{"description", "Open or close the mirror"},
                               {"preferred_trigger", shortcut.trigger}};
    list.append({shortcut.id, facts});
  }
  auto message = callOf(kPath, kShortcuts, "BindShortcuts");
  message << QVariant::fromValue(QDBusObjectPath(session_)) << QVariant::fromValue(list) << parentWindow()
          << requestOptions();
  call(Step::Binding, message, &ShortcutPortal::requested);
}

// What counts is whether our ids are among the results: some desktops answer "failed" to what they bound.
void ShortcutPortal::bound(uint response, const QVariantMap& results) {
  step_ = Step::Settled;
  const bool isEarlierWord = idsIn(results.value("shortcuts")).isEmpty() && !served_.isEmpty();
  if (!isEarlierWord) settle(results.value("shortcuts"));
  for (const auto& [id, trigger] : wanted_) {
    if (!served_.contains(id) && isDenial(response, id)) denied_.insert(id.toStdString());
  }
}

bool ShortcutPortal::isDenial(uint response, const QString& id) const {
  const bool isOfThisRun = isKnown_ == true && recorded_.contains(id);
  return response == kCancelledByUser || (response == kFailed && isOfThisRun);
}

void ShortcutPortal::settle(const QVariant& shortcuts) {
  serveNow(idsIn(shortcuts));
  const bool isWhole = std::all_of(wanted_.begin(), wanted_.end(),
                                   [this](const auto& shortcut) { return served_.contains(shortcut.id); });
  if (!isWhole) handlers_.didRefuse();
}

void ShortcutPortal::serveNow(const QSet<QString>& ids) {
  QSet<QString> ours;
  for (const auto& shortcut : wanted_) {
    if (ids.contains(shortcut.id)) ours.insert(shortcut.id);
  }
  served_ = ours;
  for (const auto& id : ours) denied_.remove(id.toStdString());
  handlers_.didServe(served_);
}

// An answer that does not come in time may still come: the step goes on with the response.
void ShortcutPortal::requested(const QDBusMessage& reply) {
  if (reply.type() != QDBusMessage::ErrorMessage) return;
  if (!isWithoutAnswer(reply)) {
    request_.clear();
    step_ = Step::Settled;
  }
  handlers_.didRefuse();
}

void ShortcutPortal::responded(const QDBusMessage& message) {
  if (request_.isEmpty() || message.path() != request_ || message.signature() != u"ua{sv}") return;
  request_.clear();
  const auto results = qdbus_cast<QVariantMap>(message.arguments().at(1));
  if (step_ == Step::Creating) return created(results);
  bound(message.arguments().at(0).toUInt(), results);
}

void ShortcutPortal::shortcutsChanged(const QDBusMessage& message) {
  if (!session_.isEmpty() && sessionOf(message) == session_) settle(message.arguments().value(1));
}

void ShortcutPortal::sessionClosed(const QDBusMessage& message) {
  if (session_.isEmpty() || message.path() != session_ || step_ == Step::Closing) return;
  session_.clear();
  request_.clear();
  step_ = Step::Settled;
  serveNow({});
  handlers_.didRefuse();
}

std::optional<QString> ShortcutPortal::servedId(const QDBusMessage& message) const {
  const QString id = message.arguments().value(1).toString();
  if (session_.isEmpty() || sessionOf(message) != session_ || !served_.contains(id)) return std::nullopt;
  return id;
}

void ShortcutPortal::activated(const QDBusMessage& message) {
  if (const auto id = servedId(message)) handlers_.didPress(*id);
}

void ShortcutPortal::deactivated(const QDBusMessage& message) {
  if (const auto id = servedId(message)) handlers_.didRelease(*id);
}

QList<PortalShortcut> ShortcutPortal::askable() const {
  QList<PortalShortcut> list;
  for (const auto& shortcut : wanted_) {
    if (!denied_.contains(shortcut.id.toStdString())) list.append(shortcut);
  }
  return list;
}

// The object of a request is known beforehand, so its response cannot be missed.
QVariantMap ShortcutPortal::requestOptions() {
  const QString token = QStringLiteral("vistrel%1").arg(++requests_);
  const QString sender = bus_->baseService().mid(1).replace('.', '_');
  request_ = QStringLiteral("%1/request/%2/%3").arg(kPath, sender, token);
  return {{"handle_token", token}};
}

void ShortcutPortal::call(Step step, const QDBusMessage& message, Answer answer) {
  step_ = step;
  auto* pending = new QDBusPendingCallWatcher(bus_->asyncCall(message), this);
  connect(pending, &QDBusPendingCallWatcher::finished, this,
          [this, pending, step, answer, portal = portals_, request = request_] {
            pending->deleteLater();
            if (portal != portals_ || step_ != step || request != request_) return;
            (this->*answer)(pending->reply());
          });
}

}  // namespace vistrel::keyboard
