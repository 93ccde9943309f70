#pragma once

#include <QAbstractNativeEventFilter>
#include <QDBusServiceWatcher>
#include <functional>
#include <memory>

#include "qt/SingleShot.h"

namespace vistrel::qt {

/// Waits for a desktop that takes tray icons: over D-Bus (StatusNotifierItem) or by embedding (XEmbed system
/// tray). Qt decides for the process between the two when its first icon is made, so none is made before.
class TrayHostWatch final : public QAbstractNativeEventFilter {
 public:
  /// `handler` is called once, from the main loop.
  explicit TrayHostWatch(std::function<void()> handler);
  ~TrayHostWatch() override;

  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

 private:
  void embeddingHostCame();
  void ready(std::chrono::milliseconds delay);

  std::function<void()> handler_;
  QDBusServiceWatcher busHosts_;
  std::unique_ptr<SingleShot> ready_;
};

}  // namespace vistrel::qt
