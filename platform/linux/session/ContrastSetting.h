#pragma once

#include <functional>
#include <memory>

#include "linux/qt/Palettes.h"
#include "linux/session/GnomeSetting.h"
#include "linux/session/PortalSetting.h"

namespace vistrel::session {

/// Whether the user wants more contrast, live. It asks in this order, and the first that answers counts: the
/// Settings portal (`contrast`), GNOME's settings. Usual where neither knows.
class ContrastSetting {
 public:
  /// `didChange` is called from the main loop.
  explicit ContrastSetting(std::function<void()> didChange);

  [[nodiscard]] qt::Contrast contrast() const { return contrast_; }

 private:
  void useGnomeSetting();
  void set(bool isHigh);

  std::function<void()> didChange_;
  qt::Contrast contrast_ = qt::Contrast::Usual;
  std::unique_ptr<GnomeSetting> gnome_;
  PortalSetting portal_;
};

}  // namespace vistrel::session
