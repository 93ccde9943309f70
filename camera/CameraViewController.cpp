#include "camera/CameraViewController.h"

#include <any>
#include <utility>

#include "app/AuxiliaryWindows.h"
#include "app/CameraMenu.h"
#include "app/Notifications.h"
#include "app/PreferenceKeys.h"
#include "appkit/NSApplication.h"
#include "appkit/NSWindow.h"
#include "base/Log.h"
#include "foundation/Bundle.h"
#include "foundation/ProcessInfo.h"

namespace vistrel {

namespace {

constexpr CGColor kCoralRed{1.0, 0.37, 0.34, 1.0};
constexpr double kCloseButtonRadius = 6.0;
constexpr CGColor kDarkBacking{0.0, 0.0, 0.0, 0.8};
constexpr double kPopupRadius = 5.0;
constexpr ProcessInfo::OperatingSystemVersion kFirstWithCenterStage{12, 3, 0};

NSView& connected(const std::shared_ptr<NSView>& view, const char* outlet) {
  if (!view) fatalError(std::string("the outlet ") + outlet + " is not connected");
  return *view;
}

const Error* errorIn(const Notification& notification) {
  const auto found = notification.userInfo.find(AVCaptureSessionErrorKey);
  return found == notification.userInfo.end() ? nullptr : std::any_cast<Error>(&found->second);
}

std::shared_ptr<CALayer> makeBacking(const CGColor& color, double radius) {
  auto layer = std::make_shared<CALayer>();
  layer->setBackgroundColor(color);
  layer->setCornerRadius(radius);
  return layer;
}

}  // namespace

CameraViewController::CameraViewController() : defaults_(UserDefaults::standard()) {
  implement(action::kSwitchCameraInput, [this](NSObject* sender) { switchCameraInputWithSender(sender); });
  implement(action::kOpenAbout, [](NSObject*) { openAboutWindow(); });
  implement(action::kOpenPreferences, [this](NSObject*) { prefsWindow_ = openPreferencesWindow(); });
  implement(action::kQuit, [](NSObject* sender) { NSApplication::shared().terminate(sender); });
}

void CameraViewController::connectOutlet(const std::string& name, const std::shared_ptr<NSView>& view) {
  if (name == "noCamerasView") noCamerasView_ = view;
  if (name == "viewContainingVideo") viewContainingVideo_ = view;
  if (name == "availableCamerasPopupButton") {
    availableCamerasPopupButton_ = std::dynamic_pointer_cast<NSPopUpButton>(view);
  }
  if (availableCamerasPopupButton_) {
    PopUpButtonCell_ = dynamic_cast<NSPopUpButtonCell*>(availableCamerasPopupButton_->cell());
  }
  if (name == "popupContrastView") popupContrastView_ = view;
  if (name == "closeButtonContrastView") closeButtonContrastView_ = view;
}

NSPopUpButton& CameraViewController::availableCamerasPopupButton() const {
  connected(availableCamerasPopupButton_, "availableCamerasPopupButton");
  return *availableCamerasPopupButton_;
}
NSView& CameraViewController::noCamerasView() const {
  return connected(noCamerasView_.lock(), "noCamerasView");
}
NSView& CameraViewController::viewContainingVideo() const {
  return connected(viewContainingVideo_, "viewContainingVideo");
}
NSView& CameraViewController::popupContrastView() const {
  return connected(popupContrastView_.lock(), "popupContrastView");
}
NSView& CameraViewController::closeButtonContrastView() const {
  return connected(closeButtonContrastView_.lock(), "closeButtonContrastView");
}

void CameraViewController::viewDidLoad() {
  NSViewController::viewDidLoad();
  cameras_ = std::make_unique<CameraManagement>();
  addTrackingArea();
  availableCamerasPopupButton().setHidden(true);
  availableCamerasPopupButton().setFocusRingType(NSFocusRingType::None);
  setUpContrastViews();
  observe();
}

void CameraViewController::observe() {
  detachObserver_ = NotificationCenter::defaultCenter().addObserver(
      notification::windowDetached(), nullptr, [this](const Notification&) { performDetachedWindowTasks(); });
  observeSession();
}

void CameraViewController::observeSession() {
  auto& center = NotificationCenter::defaultCenter();
  sessionRuntimeErrorObserver_ = center.addObserver(AVCaptureSessionRuntimeErrorNotification, nullptr,
                                                    [this](const Notification& n) { sessionDidFail(n); });
  sessionStartObserver_ =
      center.addObserver(AVCaptureSessionDidStartRunningNotification, nullptr,
                         [](const Notification&) { Log::line("📹✅ Capture Session Started"); });
  sessionStopObserver_ =
      center.addObserver(AVCaptureSessionDidStopRunningNotification, nullptr,
                         [](const Notification&) { Log::line("📹🛑 Capture Session Stopped"); });
}

void CameraViewController::sessionDidFail(const Notification& failure) {
  const Error* error = errorIn(failure);
  Log::line("📹💥 Capture Session Runtime Error: " + (error ? error->message : "n/a"));
  tellWhyEmpty(error ? error->message : translatable("The camera does not say what is wrong."));
}

void CameraViewController::stopObserving() {
  detachObserver_.remove();
  sessionRuntimeErrorObserver_.remove();
  sessionStartObserver_.remove();
  sessionStopObserver_.remove();
}

void CameraViewController::viewWillAppear() {
  // A controller that is shown again listens again.
  if (!detachObserver_.isActive()) observe();
  cameras_->refreshDevices();
  cameras_->selectDefaultCamera();
  populateCameraMenu();
  const bool hasCameras = !cameras_->availableCameras().empty();
  noCamerasView().setHidden(hasCameras);
  if (previewLayer_) previewLayer_->setHidden(!hasCameras);
  addTrackingArea();
  tellWhyEmpty(hasCameras ? "" : translatable("No camera was found."));
  if (const auto device = cameras_->selectedDevice()) startCaptureSession(*device);
  focusButton();
}

void CameraViewController::viewDidDisappear() {
  stopObserving();
  stopCaptureSession();
  gestures_.setLayer(nullptr);
  tellWhyEmpty({});
  isDetached_ = false;
  // The pointer cannot be over a view that is gone; the next showing begins without controls.
  availableCamerasPopupButton().setHidden(true);
  popupContrastView().setHidden(true);
}

void CameraViewController::addTrackingArea() {
  view().addTrackingArea(
      {view().visibleRect(), NSTrackingArea::kMouseEnteredAndExited | NSTrackingArea::kActiveAlways, this});
}

void CameraViewController::focusButton() {
  NSWindow* window = view().window();
  if (window && availableCamerasPopupButton().acceptsFirstResponder()) {
    window->makeFirstResponder(&availableCamerasPopupButton());
  }
}

void CameraViewController::startCaptureSession(const AVCaptureDevice& device) {
  const auto session = std::make_shared<AVCaptureSession>();
  addInput(*session, device);
  choosePreset(*session);
  if (ProcessInfo::isOperatingSystemAtLeast(kFirstWithCenterStage) && device.isCenterStageActive()) {
    Log::line("🎭 Center Stage is Active");
  }
  session->startRunning();
  setCaptureSession(session);
}

void CameraViewController::addInput(AVCaptureSession& session, const AVCaptureDevice& device) {
  auto input = AVCaptureDeviceInput::create(device);
  if (input) {
    session.addInput(std::move(input).value());
  } else {
    Log::line(input.error().message);
    tellWhyEmpty(input.error().message);
  }
}

void CameraViewController::choosePreset(AVCaptureSession& session) {
  for (const char* preset :
       {AVCaptureSessionPreset3840x2160, AVCaptureSessionPreset1920x1080, AVCaptureSessionPreset1280x720}) {
    if (!session.canSetSessionPreset(preset)) continue;
    session.setSessionPreset(preset);
    return;
  }
}

void CameraViewController::setCaptureSession(std::shared_ptr<AVCaptureSession> session) {
  const auto previous = std::exchange(captureSession_, std::move(session));
  if (captureSession_ && captureSession_ != previous) installPreview();
}

void CameraViewController::installPreview() {
  auto layer = std::make_shared<AVCaptureVideoPreviewLayer>(captureSession_);
  layer->setVideoGravity(AVLayerVideoGravity::ResizeAspect);
  auto* connection = layer->connection();
  if (connection && connection->isVideoMirroringSupported()) {
    connection->setAutomaticallyAdjustsVideoMirroring(false);
    connection->setVideoMirrored(defaults_.boolForKey(preference::kSelectedMirroring));
  }
  previewLayer_ = layer;
  viewContainingVideo().setLayer(layer);
  gestures_.setLayer(layer);
}

void CameraViewController::stopCaptureSession() {
  if (captureSession_) captureSession_->stopRunning();
  setCaptureSession(nullptr);
}

void CameraViewController::switchCameraInputWithSender(NSObject* sender) {
  const auto* item = dynamic_cast<NSMenuItem*>(sender);
  if (!item) return;
  const std::string name = item->title();
  stopCaptureSession();
  cameras_->saveDefaultCamera(name);
  tellWhyEmpty({});
  if (const auto device = cameras_->selectedDevice()) startCaptureSession(*device);
  populateCameraMenu();
}

void CameraViewController::setUpContrastViews() {
  const auto closeBacking = closeButtonContrastView_.lock();
  closeButtonContrastView().setLayer(makeBacking(kCoralRed, kCloseButtonRadius));
  closeBacking->setHidden(true);
  viewContainingVideo().addSubview(closeBacking, NSWindowOrderingMode::Above, &view());
  const auto popupBacking = popupContrastView_.lock();
  popupContrastView().setLayer(makeBacking(kDarkBacking, kPopupRadius));
  popupBacking->setHidden(true);
  viewContainingVideo().addSubview(popupBacking, NSWindowOrderingMode::Below, &availableCamerasPopupButton());
}

void CameraViewController::populateCameraMenu() {
  auto menu = std::make_shared<NSMenu>("Options Menu");
  auto face = std::make_shared<NSMenuItem>();
  face->setImage(NSImage::imageNamed(NSImageNameSmartBadgeTemplate));
  menu->insertItem(face, 0);
  if (auto* cell = availableCamerasPopupButton().cell()) {
    cell->setImagePosition(NSCellImagePosition::ImageOnly);
    cell->setBezelStyle(NSBezelStyle::TexturedRounded);
  }
  cameras_->refreshDevices();
  addCameraItems(*menu, *cameras_);
  addCommandItems(*menu);
  availableCamerasPopupButton().setMenu(menu);
}

void CameraViewController::showControls() {
  availableCamerasPopupButton().setHidden(false);
  if (view().effectiveAppearance().isDark()) popupContrastView().setHidden(false);
}

void CameraViewController::setCloseButtonHidden(bool isHidden) {
  NSWindow* window = view().window();
  auto* button = window ? window->standardWindowButton(NSWindowButton::Close) : nullptr;
  if (button) button->setHidden(isHidden);
}

void CameraViewController::mouseEntered(const NSEvent& /*event*/) {
  showControls();
  setCloseButtonHidden(false);
  closeButtonContrastView().setHidden(true);
}

void CameraViewController::mouseExited(const NSEvent& /*event*/) {
  availableCamerasPopupButton().setHidden(true);
  popupContrastView().setHidden(true);
  setCloseButtonHidden(true);
  closeButtonContrastView().setHidden(true);
}

void CameraViewController::keyDown(const NSEvent& event) {
  if (availableCamerasPopupButton().takesKey(event.keyCode())) showControls();
  NSViewController::keyDown(event);
}

void CameraViewController::tellWhyEmpty(const std::string& reason) {
  const std::string words = Bundle::main().localizedString(reason);
  if (NSWindow* window = view().window()) window->setAccessibilityHelp(words);
  NotificationCenter::defaultCenter().post(notification::emptinessChanged(), this,
                                           {{notification::kReasonKey, words}});
}

void CameraViewController::performDetachedWindowTasks() {
  isDetached_ = true;
  setCloseButtonHidden(false);
  closeButtonContrastView().setHidden(true);
}

}  // namespace vistrel
