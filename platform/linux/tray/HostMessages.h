#pragma once

#include <QPoint>
#include <QString>
#include <functional>
#include <optional>

class QDBusMessage;

namespace vistrel::tray {

/// What a tray host says to the icon beyond what Qt hands on: where a press was (StatusNotifierItem:
/// Activate, ContextMenu, SecondaryActivate), and the activation token that belongs to it
/// (ProvideXdgActivationToken). There is one of it, made before anything speaks on the bus. Main thread only.
class HostMessages {
 public:
  HostMessages();
  ~HostMessages();
  HostMessages(const HostMessages&) = delete;
  HostMessages& operator=(const HostMessages&) = delete;

  /// The place of the latest press, in the host's own units; told once.
  [[nodiscard]] std::optional<QPoint> takePlace();
  /// `handler` is told of each token, before the press that it belongs to.
  void setTokenHandler(std::function<void(const QString& token)> handler);

 private:
  static void heard(const QDBusMessage& message);
  void read(const QDBusMessage& message);

  std::optional<QPoint> place_;
  std::function<void(const QString&)> tokenHandler_;
};

}  // namespace vistrel::tray
