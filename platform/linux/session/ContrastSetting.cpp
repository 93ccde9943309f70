#include "linux/session/ContrastSetting.h"

#include <utility>

namespace vistrel::session {

namespace {

constexpr const char* kKey = "contrast";
constexpr uint kMore = 1;
constexpr const char* kGnomeSchema = "org.gnome.desktop.a11y.interface";
constexpr const char* kGnomeKey = "high-contrast";

}  // namespace

ContrastSetting::ContrastSetting(std::function<void()> didChange)
    : didChange_(std::move(didChange)), portal_(kKey, [this](std::optional<uint> told) {
        if (!told) return useGnomeSetting();
        gnome_.reset();
        set(*told == kMore);
      }) {}

void ContrastSetting::useGnomeSetting() {
  if (!gnome_) gnome_ = GnomeSetting::open(kGnomeSchema, kGnomeKey, [this] { useGnomeSetting(); });
  set(gnome_ && gnome_->isOn());
}

void ContrastSetting::set(bool isHigh) {
  const auto wanted = isHigh ? qt::Contrast::High : qt::Contrast::Usual;
  if (std::exchange(contrast_, wanted) != wanted) didChange_();
}

}  // namespace vistrel::session
