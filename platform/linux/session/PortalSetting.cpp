#include "linux/session/PortalSetting.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <string>
#include <utility>

#include "base/Log.h"

namespace vistrel::session {

namespace {

constexpr const char* kService = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kInterface = "org.freedesktop.portal.Settings";
constexpr const char* kNamespace = "org.freedesktop.appearance";

// Portals wrap the answer to Read twice and the signal's value once.
uint unwrapped(QVariant value) {
  while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
  return value.toUInt();
}

}  // namespace

PortalSetting::PortalSetting(const char* key, std::function<void(std::optional<uint>)> told)
    : key_(key),
      told_(std::move(told)),
      portal_(kService, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForRegistration) {
  connect(&portal_, &QDBusServiceWatcher::serviceRegistered, this, [this] { askPortal(); });
  connectPortal();
  askPortal();
}

void PortalSetting::connectPortal() {
  // Without a name for the type Qt refuses a slot that takes it.
  qRegisterMetaType<QDBusVariant>("QDBusVariant");
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  if (!bus.connect(kService, kPath, kInterface, "SettingChanged", this,
                   SLOT(settingChanged(QString, QString, QDBusVariant)))) {
    Log::warning("Vistrel cannot hear of changes of the desktop's " + std::string(key_));
  }
}

void PortalSetting::askPortal() {
  auto message = QDBusMessage::createMethodCall(kService, kPath, kInterface, "Read");
  message << kNamespace << key_;
  auto* call = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
  connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
    call->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *call;
    told_(reply.isError() ? std::nullopt : std::optional(unwrapped(reply.value().variant())));
  });
}

void PortalSetting::settingChanged(const QString& nameSpace, const QString& key, const QDBusVariant& value) {
  if (nameSpace == kNamespace && key == key_) told_(unwrapped(value.variant()));
}

}  // namespace vistrel::session
