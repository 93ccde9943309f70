#include "app/AppDelegate.h"

#include <any>
#include <utility>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "app/AuxiliaryWindows.h"
#include "app/CameraMenu.h"
#include "app/Notifications.h"
#include "app/PreferenceKeys.h"
#include "appkit/NSAccessibility.h"
#include "appkit/NSStatusBar.h"
#include "base/Log.h"
#include "base/Program.h"
#include "foundation/ProcessInfo.h"

namespace vistrel {

namespace {

constexpr ProcessInfo::OperatingSystemVersion kFirstWithCenterStage{12, 3, 0};
constexpr const char* kClickedStatusBarButton = "clickedStatusBarButton:";
// In the desktop entry.
constexpr const char* kPreferencesAction = "preferences";
constexpr NSEventMask kMouseDowns = maskOf(NSEventType::LeftMouseDown) | maskOf(NSEventType::RightMouseDown);

}  // namespace

AppDelegate::AppDelegate() : defaults_(UserDefaults::standard()) {
  implement(kClickedStatusBarButton, [this](NSObject*) { clickedStatusBarButton(); });
  implement(action::kSwitchCameraInput, [this](NSObject* sender) { switchCameraInputWithSender(sender); });
  implement(action::kOpenAbout, [](NSObject*) { openAboutWindow(); });
  implement(action::kOpenPreferences, [](NSObject*) { openPreferencesWindow(); });
  implement(action::kQuit, [](NSObject* sender) { NSApplication::shared().terminate(sender); });
}

void AppDelegate::applicationDidFinishLaunching() {
  observeChanges();
  attachShortcut();
  registerPreferenceDefaults();
  readDismissPreference();
  setUpStatusItem();
  cameras_ = std::make_unique<CameraManagement>();
  switchCenterStageOn();
  buildMenu();
}

void AppDelegate::observeChanges() {
  auto& center = NotificationCenter::defaultCenter();
  dataObserver_ = center.addObserver(notification::dataChanged(), nullptr,
                                     [this](const Notification&) { updateDataWithSender(); });
  displayObserver_ = center.addObserver(
      NSApplicationDidChangeScreenParametersNotification, &NSApplication::shared(),
      [this](const Notification&) {
        Log::line("🖥 Changed Display");
        popover_->performClose(nullptr);
      },
      NotificationCenter::Queue::Main);
  emptinessObserver_ = center.addObserver(notification::emptinessChanged(), nullptr,
                                          [this](const Notification& change) { tellWhyEmpty(change); });
}

// Who started from a menu sees no standard output.
void AppDelegate::tellWhyEmpty(const Notification& change) {
  const auto reason = std::any_cast<std::string>(change.userInfo.at(notification::kReasonKey));
  const std::string name = program::kName;
  statusBarItem_->button()->setToolTip(reason.empty() ? name : name + ": " + reason);
  if (!reason.empty()) NSAccessibility::announce(reason);
}

void AppDelegate::attachShortcut() {
  KeyboardShortcuts::onKeyUp(shortcutName::toggleShortcutMode(), [this] { togglePopover(this); });
}

void AppDelegate::registerPreferenceDefaults() {
  defaults_.registerDefaults({{preference::kSelectedMirroring, true}});
}

void AppDelegate::readDismissPreference() {
  dismissOnClick_ = defaults_.integerForKey(preference::kDismiss) == 0;
}

void AppDelegate::switchCenterStageOn() {
  if (!ProcessInfo::isOperatingSystemAtLeast(kFirstWithCenterStage) || !cameras_->selectedDevice()) return;
  AVCaptureDevice::setCenterStageControlMode(AVCaptureCenterStageControlMode::Cooperative);
  AVCaptureDevice::setCenterStageEnabled(true);
}

void AppDelegate::updateDataWithSender() {
  readDismissPreference();
  setUpStatusItem();
}

bool AppDelegate::applicationShouldHandleReopen(bool hasVisibleWindows) {
  if (hasVisibleWindows) return true;
  togglePopover(this);
  NSApplication::shared().activateIgnoringOtherApps(true);
  return true;
}

void AppDelegate::applicationPerformAction(const std::string& action) {
  if (action == kPreferencesAction) openPreferencesWindow();
}

void AppDelegate::applicationWillResignActive() {
  if (dismissOnClick_) popover_->performClose(nullptr);
}

void AppDelegate::applicationWillTerminate() {
  dataObserver_.remove();
  displayObserver_.remove();
  emptinessObserver_.remove();
}

void AppDelegate::setUpStatusItem() {
  // What is on screen goes before its owner does: never two mirrors, never a camera left on.
  if (popover_) popover_->performClose(nullptr);
  popover_ = std::make_unique<Popover>();
  selectedIconIndex_ = defaults_.integerForKey(preference::kSelectedIcon);
  statusBarItem_ = NSStatusBar::system().statusItemWithLength(NSVariableStatusItemLength);
  const auto button = statusBarItem_->button();
  if (!button) return;
  const std::string name = preference::entryAt(availableIcons, selectedIconIndex_);
  const auto image = NSImage::imageNamed(name);
  if (!image) fatalError("unable to find image named " + name);
  button->setImage(image);
  button->setAction(kClickedStatusBarButton);
  button->sendActionOn(kMouseDowns);
  if (menu_) statusBarItem_->setUpcomingMenu(menu_);
}

void AppDelegate::clickedStatusBarButton() {
  const auto event = NSApplication::shared().currentEvent();
  if (event && event->asksForMenu()) {
    openMenu();
    return;
  }
  statusBarItem_->button()->setHighlighted(true);
  togglePopover(this);
}

void AppDelegate::openMenu() {
  popover_->performClose(nullptr);
  statusBarItem_->setMenu(menu_);
  menu_->setDelegate(this);
  statusBarItem_->button()->performClick(this);
}

void AppDelegate::togglePopover(NSObject* sender) {
  const auto button = statusBarItem_ ? statusBarItem_->button() : nullptr;
  if (!button) return;
  if (popover_->isShown()) {
    popover_->performClose(sender);
    return;
  }
  popover_->showRelativeToRect(button->bounds(), *button, NSRectEdge::MinY);
  NSApplication::shared().activateIgnoringOtherApps(true);
}

void AppDelegate::buildMenu() {
  auto menu = std::make_shared<NSMenu>("Status Bar Menu");
  cameras_->refreshDevices();
  addCameraItems(*menu, *cameras_);
  addCommandItems(*menu);
  menu_ = std::move(menu);
  statusBarItem_->setUpcomingMenu(menu_);
}

void AppDelegate::menuDidClose(NSMenu& /*menu*/) {
  postMouseUpAtIcon();
  refreshMenu();
}

void AppDelegate::postMouseUpAtIcon() {
  const auto button = statusBarItem_->button();
  const NSWindow* window = button ? button->window() : nullptr;
  if (!window) return;
  const Rect onScreen = window->convertRectToScreen(button->frame());
  NSEvent::Mouse release;
  release.type = NSEventType::RightMouseUp;
  release.location = onScreen.lowerLeft();
  release.pressure = 1.0F;
  NSApplication::shared().postEvent(NSEvent::mouseEvent(release), false);
}

void AppDelegate::refreshMenu() {
  statusBarItem_->setMenu(nullptr);
  cameras_->refreshDevices();
  Log::line("Just checking…\u00a0these are the refreshed devices: " +
            cameras_->availableCamerasDescription());
  buildMenu();
}

void AppDelegate::switchCameraInputWithSender(NSObject* sender) {
  const auto* item = dynamic_cast<NSMenuItem*>(sender);
  if (!item) return;
  cameras_->saveDefaultCamera(item->title());
  refreshMenu();
}

int runApplication() {
  AppDelegate delegate;
  NSApplication::shared().setDelegate(&delegate, &delegate);
  const int status = NSApplication::shared().run();
  NSApplication::shared().setDelegate(nullptr, nullptr);
  return status;
}

}  // namespace vistrel
