#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <optional>

#include "linux/keyboard/DeniedShortcuts.h"

namespace vistrel::keyboard {

/// A shortcut as the portal takes it. The desktop keeps what the user chose for an id, and looks at the
/// trigger only when the id is new to it.
struct PortalShortcut {
  QString id;
  QString trigger;  ///< such as "CTRL+ALT+z" (XDG shortcuts specification)
};

/// The desktop's portal for global shortcuts (`org.freedesktop.portal.GlobalShortcuts`), on a bus connection
/// of its own that is opened with the first shortcut. The portal may be absent, come late, be replaced or not
/// answer: nothing here waits for it. Main thread only.
class ShortcutPortal final : public QObject {
  Q_OBJECT

 public:
  struct Handlers {
    /// The desktop serves these ids now, and no others.
    std::function<void(const QSet<QString>& ids)> didServe;
    /// No portal, or it refuses or does not answer: what it does not serve now it may never serve.
    std::function<void()> didRefuse;
    std::function<void(const QString& id)> didPress;
    std::function<void(const QString& id)> didRelease;
  };
  explicit ShortcutPortal(Handlers handlers);

  /// Asks for these and no others; an empty list gives the earlier ones back.
  void serve(QList<PortalShortcut> shortcuts);
  /// The user has recorded this one: what was denied once is asked for again only after this.
  void recorded(const QString& id) {
    denied_.remove(id.toStdString());
    recorded_.insert(id);
  }

 private slots:
  void responded(const QDBusMessage& message);
  void activated(const QDBusMessage& message);
  void deactivated(const QDBusMessage& message);
  void shortcutsChanged(const QDBusMessage& message);
  void sessionClosed(const QDBusMessage& message);

 private:
  enum class Step { None, Identifying, Closing, Creating, Binding, Settled };
  using Answer = void (ShortcutPortal::*)(const QDBusMessage& reply);

  bool open();
  void ownerChanged(const QString& oldOwner, const QString& newOwner);
  void reset();
  void startOver();
  void forget();
  void identify();
  void identified(const QDBusMessage& reply);
  void closeSession();
  void sessionLeft(const QDBusMessage& reply);
  void createSession();
  void created(const QVariantMap& results);
  void bind();
  void bound(uint response, const QVariantMap& results);
  void requested(const QDBusMessage& reply);
  void settle(const QVariant& shortcuts);
  void serveNow(const QSet<QString>& ids);
  void call(Step step, const QDBusMessage& message, Answer answer);
  // GNOME calls the user's "no" a failure too. It may be another one where the program is not installed, or
  // at a login; hardly while the user is at the question.
  [[nodiscard]] bool isDenial(uint response, const QString& id) const;
  [[nodiscard]] QString sessionToken() const;
  [[nodiscard]] QVariantMap requestOptions();
  [[nodiscard]] QList<PortalShortcut> askable() const;
  [[nodiscard]] std::optional<QString> servedId(const QDBusMessage& message) const;

  Handlers handlers_;
  std::optional<QDBusConnection> bus_;
  std::unique_ptr<QDBusServiceWatcher> owner_;
  QList<PortalShortcut> wanted_;
  QList<PortalShortcut> removed_;  ///< by the user, who has none now
  QSet<QString> served_;
  DeniedShortcuts denied_;
  Step step_ = Step::None;
  QSet<QString> recorded_;       ///< by the user, while this program runs
  std::optional<bool> isKnown_;  ///< to the portal; none before it was asked
  int portals_ = 0;              ///< that were there so far: the answer of an earlier one counts for nothing
  int requests_ = 0;             ///< made so far
  QString request_;              ///< the object of the one whose response is awaited
  QString session_;
};

}  // namespace vistrel::keyboard
