#pragma once

#include <QDBusVirtualObject>
#include <functional>

namespace vistrel::qt {

/// One running program in a user's session: the owner of "org.vistrel.Vistrel" on the session bus, where it
/// answers as `org.freedesktop.Application` (Desktop Entry Specification, D-Bus activation).
class SingleInstance final : public QDBusVirtualObject {
 public:
  enum class Role { First, Second, WithoutBus };

  SingleInstance();

  /// Claims the name; as the second one, hands over to the first before it answers.
  [[nodiscard]] Role claim();
  /// Who is told that the program was started again.
  void setReopenHandler(std::function<void()> handler) { reopen_ = std::move(handler); }
  /// From here on an activation is a start of its own. One that came before belongs to this start.
  void didFinishStart() { isStarted_ = true; }

  [[nodiscard]] QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
  std::function<void()> reopen_;
  bool isStarted_ = false;
};

}  // namespace vistrel::qt
