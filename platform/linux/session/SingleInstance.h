#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <functional>

namespace vistrel::session {

/// One running program in a user's session: the owner of "org.vistrel.Vistrel" on the session bus, where it
/// answers as `org.freedesktop.Application` (Desktop Entry Specification, D-Bus activation).
class SingleInstance final : public QDBusVirtualObject {
 public:
  enum class Role { First, Second, WithoutBus };

  SingleInstance();

  /// Claims the name; as the second one, hands over to the first before it answers.
  [[nodiscard]] Role claim();
  /// Who is told that the program was started again; at once when it was while nobody was told.
  void setReopenHandler(std::function<void()> handler);

  [[nodiscard]] QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
  void activate();

  QDBusConnection bus_;
  std::function<void()> reopen_;
  bool isClaimed_ = false;
  bool isReopenDue_ = false;
};

}  // namespace vistrel::session
