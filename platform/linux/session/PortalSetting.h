#pragma once

#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>
#include <functional>
#include <optional>

namespace vistrel::session {

/// A number among the desktop's settings of appearance, live, as its portal tells it
/// (`org.freedesktop.portal.Settings`, namespace `org.freedesktop.appearance`).
class PortalSetting final : public QObject {
  Q_OBJECT

 public:
  /// `told` is called from the main loop: first, when a portal comes, and at each change. None where no
  /// portal knows the setting.
  PortalSetting(const char* key, std::function<void(std::optional<uint>)> told);

 private slots:
  void settingChanged(const QString& nameSpace, const QString& key, const QDBusVariant& value);

 private:
  void connectPortal();
  void askPortal();

  const char* key_;
  std::function<void(std::optional<uint>)> told_;
  QDBusServiceWatcher portal_;
};

}  // namespace vistrel::session
