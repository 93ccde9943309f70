#pragma once

#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>
#include <functional>
#include <memory>

#include "qt/GnomeSettings.h"

namespace vistrel::qt {

/// The desktop's preference for light or dark, live: what the Settings portal (`org.freedesktop.appearance`,
/// `color-scheme`) tells; without one what GNOME's settings tell; without those the palette that the program
/// started with.
class ColourScheme final : public QObject {
  Q_OBJECT

 public:
  explicit ColourScheme(std::function<void()> handler);

  [[nodiscard]] bool isDark() const { return isDark_; }

 private slots:
  void settingChanged(const QString& nameSpace, const QString& key, const QDBusVariant& value);

 private:
  void connectPortal();
  void askPortal();
  void useGnomeSettings();
  void set(bool isDark);

  std::function<void()> handler_;
  QDBusServiceWatcher portal_;
  std::unique_ptr<GnomeSettings> gnome_;
  bool isDark_;
};

}  // namespace vistrel::qt
