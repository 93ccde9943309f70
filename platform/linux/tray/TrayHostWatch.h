#pragma once

#include <QAbstractNativeEventFilter>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QObject>
#include <functional>
#include <memory>

#include "linux/qt/SingleShot.h"

namespace vistrel::tray {

/// Who takes tray icons on this desktop: a host on the session bus (StatusNotifierItem), which is the better
/// one, or a window that embeds them (XEmbed system tray).
enum class TrayHost { None, Bus, Embedding };

/// Watches for tray hosts, which may come late, end, or be replaced by one of the other kind.
class TrayHostWatch final : public QObject, public QAbstractNativeEventFilter {
  Q_OBJECT

 public:
  /// `handler` is called from the main loop with a host of another kind than before. It hears nothing of one
  /// that ends: an icon waits for the next of its kind.
  explicit TrayHostWatch(std::function<void(TrayHost)> handler);
  ~TrayHostWatch() override;

  /// The one that was told of last.
  [[nodiscard]] TrayHost known() const { return known_; }

  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

 private slots:
  void look();

 private:
  void answered();
  [[nodiscard]] TrayHost present() const;
  void consider();
  void settle();

  std::function<void(TrayHost)> handler_;
  QDBusServiceWatcher busHosts_;
  TrayHost known_ = TrayHost::None;
  bool hasBusHost_ = false;
  std::unique_ptr<QDBusPendingCallWatcher> answer_;
  std::unique_ptr<qt::SingleShot> again_;
  std::unique_ptr<qt::SingleShot> settling_;
};

}  // namespace vistrel::tray
