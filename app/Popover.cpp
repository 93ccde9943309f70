#include "app/Popover.h"

#include "app/Notifications.h"
#include "app/PreferenceKeys.h"
#include "appkit/NSAccessibility.h"
#include "appkit/NSStoryboard.h"
#include "base/Log.h"
#include "base/Program.h"
#include "camera/CameraViewController.h"
#include "foundation/Bundle.h"

namespace vistrel {

Popover::Popover() : defaults_(UserDefaults::standard()) {
  setDelegate(this);
  setTitle(program::kName);
  setAnimates(true);
  dataObserver_ = NotificationCenter::defaultCenter().addObserver(
      notification::dataChanged(), nullptr, [this](const Notification&) { updateDataWithSender(); });
  themeObserver_ = DistributedNotificationCenter::defaultCenter().addObserver(
      notification::interfaceThemeChanged(), nullptr,
      [this](const Notification&) { interfaceModeChangedWithSender(); });
  applyAppearance();
  configureContent();
}

void Popover::initWithCoder() { fatalError("init(coder:) has not been implemented"); }

void Popover::configureContent() {
  selectedSizeIndex_ = defaults_.integerForKey(preference::kSelectedPopoverSize);
  const auto controller = makeFromStoryboard();
  setContentSize(preference::entryAt(availableSizes, selectedSizeIndex_).size);
  setBehavior(NSPopoverBehavior::Transient);
  setContentViewController(controller);
}

std::shared_ptr<CameraViewController> Popover::makeFromStoryboard() {
  NSStoryboard::registerClass("CameraViewController",
                              [] { return std::make_shared<CameraViewController>(); });
  const auto storyboard = NSStoryboard::storyboardWithName("Main", Bundle::main());
  auto controller = std::dynamic_pointer_cast<CameraViewController>(
      storyboard.instantiateController("CameraViewController"));
  if (!controller) fatalError("Why cant I find CameraViewController? - Check Main.storyboard");
  return controller;
}

bool Popover::isDarkMode() const {
  return defaults_.stringForKey(preference::kInterfaceStyle) == preference::kDarkStyle;
}

void Popover::applyAppearance() {
  setAppearance({isDarkMode() ? NSAppearanceNameDarkAqua : NSAppearanceNameAqua});
}

void Popover::updateDataWithSender() { configureContent(); }

void Popover::interfaceModeChangedWithSender() {
  Log::line("Switched modes");
  applyAppearance();
}

bool Popover::popoverShouldDetach(NSPopover& /*popover*/) {
  Log::line("Should Detach");
  return true;
}

void Popover::popoverDidDetach(NSPopover& /*popover*/) {
  Log::line("Detached");
  NotificationCenter::defaultCenter().post(notification::windowDetached());
}

// That it opens is said by the focus, which comes into a window of the program's name.
void Popover::popoverDidClose(NSPopover& /*popover*/) {
  NSAccessibility::announce(Bundle::main().localizedString("Mirror closed"));
}

}  // namespace vistrel
