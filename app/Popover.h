#pragma once

#include <cstdint>
#include <memory>

#include "app/PreferenceKeys.h"
#include "appkit/NSPopover.h"
#include "foundation/NotificationCenter.h"
#include "foundation/UserDefaults.h"

namespace vistrel {

class CameraViewController;

/// The balloon below the status item that shows the mirror: chooses its size from the preferences, makes its
/// own camera view, follows light and dark, and may be torn off.
class Popover final : public NSPopover, public NSPopoverDelegate {
 public:
  Popover();
  /// Creation from an archive is not supported: stops the program.
  [[noreturn]] static void initWithCoder();

  [[nodiscard]] bool isDarkMode() const;
  [[nodiscard]] std::int64_t selectedSizeIndex() const { return selectedSizeIndex_; }

  // NSPopoverDelegate
  bool popoverShouldDetach(NSPopover& popover) override;
  void popoverDidDetach(NSPopover& popover) override;
  void popoverDidClose(NSPopover& popover) override;

 private:
  void configureContent();
  void applyAppearance();
  void updateDataWithSender();
  void interfaceModeChangedWithSender();
  [[nodiscard]] static std::shared_ptr<CameraViewController> makeFromStoryboard();

  UserDefaults& defaults_;
  static constexpr const auto& availableSizes = preference::kSizes;
  std::int64_t selectedSizeIndex_ = 1;
  ObservationToken dataObserver_;
  ObservationToken themeObserver_;
};

}  // namespace vistrel
