#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <optional>

#include "linux/qt/Palettes.h"
#include "linux/qt/SingleShot.h"
#include "linux/session/GnomeSetting.h"
#include "linux/session/PortalSetting.h"

namespace vistrel::session {

/// The desktop's preference for light or dark, live. It asks in this order, and the first that answers
/// counts: the Settings portal (`org.freedesktop.appearance`, `color-scheme`), GNOME's settings, the palette
/// that Qt takes from the desktop. It also sets the application's palette: one of ours after an answer of the
/// first two, else it leaves the desktop's.
class ColorScheme final : public QObject {
 public:
  struct Handlers {
    /// Once, from the main loop: the desktop has told its preference, or is too slow to be waited for.
    std::function<void()> didLearn;
    /// After that: the preference is another one.
    std::function<void()> didChange;
    /// Asked for the application's palette.
    std::function<qt::Contrast()> contrast;
  };
  explicit ColorScheme(Handlers handlers);

  [[nodiscard]] bool isDark() const { return isDark_; }
  /// The contrast is another one.
  void contrastDidChange() { look(); }

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void useGnomeSetting();
  void set(std::optional<bool> isToldDark);
  void look();
  void learned();

  Handlers handlers_;
  std::unique_ptr<GnomeSetting> gnome_;
  std::optional<bool> isToldDark_;
  bool isDark_ = false;
  std::unique_ptr<qt::SingleShot> patience_;
  PortalSetting portal_;
};

}  // namespace vistrel::session
