#pragma once

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <functional>
#include <string>
#include <vector>

namespace vistrel::session {

/// One running program in a user's session: the owner of "org.vistrel.Vistrel" on the session bus, where it
/// answers as `org.freedesktop.Application` (Desktop Entry Specification, D-Bus activation).
class SingleInstance final : public QDBusVirtualObject {
 public:
  /// `Unanswered`: another program has the name and does not answer.
  enum class Role { First, Second, WithoutBus, Unanswered };

  SingleInstance();

  /// Claims the name; as the second one, hands over to the first before it answers.
  [[nodiscard]] Role claim();
  /// Why there is no session bus.
  [[nodiscard]] std::string busError() const { return bus_.lastError().message().toStdString(); }
  /// Who is told that the program was started again; at once when it was while nobody was told.
  void setReopenHandler(std::function<void()> handler);
  /// Who is told of the actions of the desktop entry that somebody chose; at once of those chosen before.
  void setActionHandler(std::function<void(const std::string&)> handler);
  /// Whether the message that the bus started the program for asks for the program itself.
  [[nodiscard]] bool wasActivated() const { return wasActivated_; }

  [[nodiscard]] QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
  void activate();
  bool activateAction(const QDBusMessage& message, const QDBusConnection& connection);

  QDBusConnection bus_;
  std::function<void()> reopen_;
  QElapsedTimer lastActivation_;
  std::function<void(const std::string&)> action_;
  std::vector<std::string> actionsDue_;
  bool isClaimed_ = false;
  bool wasActivated_ = false;
  bool isReopenDue_ = false;
};

}  // namespace vistrel::session
