#pragma once

#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>
#include <functional>
#include <memory>

#include "qt/GnomeSettings.h"
#include "qt/SingleShot.h"

namespace vistrel::qt {

/// The desktop's preference for light or dark, live: what the Settings portal (`org.freedesktop.appearance`,
/// `color-scheme`) tells; without one what GNOME's settings tell; where those have no word the palette that
/// the program started with.
class ColourScheme final : public QObject {
  Q_OBJECT

 public:
  struct Handlers {
    /// Once, from the main loop: the desktop has told its preference, or is too slow to be waited for.
    std::function<void()> didLearn;
    /// After that: the preference is another one.
    std::function<void()> didChange;
  };
  explicit ColourScheme(Handlers handlers);

  [[nodiscard]] bool isDark() const { return isDark_; }

 private slots:
  void settingChanged(const QString& nameSpace, const QString& key, const QDBusVariant& value);

 private:
  void connectPortal();
  void askPortal();
  void useGnomeSettings();
  void set(bool isDark);
  void learned();

  Handlers handlers_;
  QDBusServiceWatcher portal_;
  std::unique_ptr<GnomeSettings> gnome_;
  const bool startedDark_;
  bool isDark_;
  std::unique_ptr<SingleShot> patience_;
};

}  // namespace vistrel::qt
