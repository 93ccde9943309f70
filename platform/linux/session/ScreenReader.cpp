#include "linux/session/ScreenReader.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace vistrel::session {

namespace {

constexpr const char* kService = "org.a11y.Bus";
constexpr const char* kPath = "/org/a11y/bus";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
constexpr const char* kInterface = "org.a11y.Status";
constexpr const char* kKey = "ScreenReaderEnabled";

}  // namespace

ScreenReader::ScreenReader()
    : service_(kService, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForRegistration) {
  connect(&service_, &QDBusServiceWatcher::serviceRegistered, this, [this] { ask(); });
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  bus.connect(kService, kPath, kProperties, "PropertiesChanged", this,
              SLOT(propertiesChanged(QString, QVariantMap, QStringList)));
  ask();
}

void ScreenReader::ask() {
  auto message = QDBusMessage::createMethodCall(kService, kPath, kProperties, "Get");
  message.setAutoStartService(false);
  message << kInterface << kKey;
  auto* call = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
  connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
    call->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *call;
    if (!reply.isError()) isOn_ = reply.value().variant().toBool();
  });
}

void ScreenReader::propertiesChanged(const QString& interface, const QVariantMap& values,
                                     const QStringList& /*others*/) {
  if (interface == kInterface && values.contains(kKey)) isOn_ = values[kKey].toBool();
}

}  // namespace vistrel::session
