#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "appkit/NSImage.h"
#include "foundation/UserDefaults.h"
#include "swiftui/CustomView.h"

namespace vistrel {

/// The settings, one control each. Every change is written at once and then announced; there is nothing to
/// apply. Controls read their setting again whenever they come on screen.
class PreferencesView final : public swiftui::CustomView {
 public:
  PreferencesView();
  [[nodiscard]] swiftui::View body() override;

 private:
  [[nodiscard]] swiftui::View iconPicker();
  [[nodiscard]] swiftui::View sizePicker();
  [[nodiscard]] static swiftui::View shortcutRow();
  [[nodiscard]] swiftui::View dismissSection();
  [[nodiscard]] swiftui::View mirroringToggle();
  [[nodiscard]] swiftui::View loginToggle();

  using Index = swiftui::State<std::int64_t>;
  /// The control's selection: shows `shown` of the state, and writes what the user chooses.
  [[nodiscard]] swiftui::Binding<std::int64_t> indexBinding(Index& state, const char* key,
                                                            std::int64_t (*shown)(std::int64_t));

  UserDefaults& defaults_;
  Index selectorIndexIcon_;
  const std::vector<std::shared_ptr<NSImage>>& icons_;
  Index selectorIndexSize_;
  swiftui::State<bool> isVideoMirrored_;
  Index selectorIndexDismissBehavior_;
  swiftui::State<bool> openAtLogin_;
};

}  // namespace vistrel
