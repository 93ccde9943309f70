#pragma once

#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>
#include <functional>
#include <memory>
#include <optional>

#include "linux/qt/SingleShot.h"
#include "linux/session/GnomeSettings.h"

namespace vistrel::session {

/// The desktop's preference for light or dark, live: what the Settings portal (`org.freedesktop.appearance`,
/// `color-scheme`) tells; without one what GNOME's settings tell; where those have no word the palette that
/// Qt takes from the desktop. Dresses the application: in a palette of ours while the desktop has a word, in
/// the desktop's own while that palette is the word.
class ColorScheme final : public QObject {
  Q_OBJECT

 public:
  struct Handlers {
    /// Once, from the main loop: the desktop has told its preference, or is too slow to be waited for.
    std::function<void()> didLearn;
    /// After that: the preference is another one.
    std::function<void()> didChange;
  };
  explicit ColorScheme(Handlers handlers);

  [[nodiscard]] bool isDark() const { return isDark_; }

  bool eventFilter(QObject* watched, QEvent* event) override;

 private slots:
  void settingChanged(const QString& nameSpace, const QString& key, const QDBusVariant& value);

 private:
  void connectPortal();
  void askPortal();
  void useGnomeSettings();
  void set(std::optional<bool> isToldDark);
  void look();
  void learned();

  Handlers handlers_;
  QDBusServiceWatcher portal_;
  std::unique_ptr<GnomeSettings> gnome_;
  std::optional<bool> isToldDark_;
  bool isDark_ = false;
  std::unique_ptr<qt::SingleShot> patience_;
};

}  // namespace vistrel::session
