#pragma once

#include <memory>
#include <string>

#include "appkit/NSPopUpButton.h"
#include "appkit/NSViewController.h"
#include "avfoundation/AVCaptureSession.h"
#include "avfoundation/AVCaptureVideoPreviewLayer.h"
#include "camera/CameraManagement.h"
#include "camera/PictureGestures.h"
#include "foundation/NotificationCenter.h"
#include "foundation/UserDefaults.h"

namespace vistrel {

/// The content of the mirror: a capture session for each showing, its mirrored picture, and the controls that
/// lie over it while the pointer is there. Main thread only.
class CameraViewController final : public NSViewController {
 public:
  CameraViewController();

  void connectOutlet(const std::string& name, const std::shared_ptr<NSView>& view) override;

  void viewDidLoad() override;
  void viewWillAppear() override;
  void viewDidDisappear() override;
  void mouseEntered(const NSEvent& event) override;
  void mouseExited(const NSEvent& event) override;
  /// A key that reaches the hidden button shows the controls.
  void keyDown(const NSEvent& event) override;
  void keyUp(const NSEvent& event) override { gestures_.keyUp(event); }
  bool performKeyEquivalent(const NSEvent& event) override { return gestures_.performKeyEquivalent(event); }
  void scrollWheel(const NSEvent& event) override { gestures_.scrollWheel(event); }
  void magnifyWithEvent(const NSEvent& event) override { gestures_.magnify(event); }
  void rightMouseDown(const NSEvent& event) override { gestures_.rightMouseDown(event); }
  void rightMouseDragged(const NSEvent& event) override { gestures_.rightMouseDragged(event); }
  void rightMouseUp(const NSEvent& /*event*/) override { gestures_.rightMouseUp(); }

  [[nodiscard]] NSPopUpButton& availableCamerasPopupButton() const;
  [[nodiscard]] NSView& noCamerasView() const;
  [[nodiscard]] NSView& viewContainingVideo() const;
  [[nodiscard]] NSView& popupContrastView() const;
  [[nodiscard]] NSView& closeButtonContrastView() const;
  [[nodiscard]] const std::shared_ptr<AVCaptureVideoPreviewLayer>& previewLayer() const {
    return previewLayer_;
  }
  [[nodiscard]] const std::shared_ptr<AVCaptureSession>& captureSession() const { return captureSession_; }
  [[nodiscard]] bool isDetached() const { return isDetached_; }

 private:
  void observe();
  void stopObserving();
  void observeSession();
  void sessionDidFail(const Notification& failure);
  void addTrackingArea();
  void focusButton();
  void startCaptureSession(const AVCaptureDevice& device);
  void addInput(AVCaptureSession& session, const AVCaptureDevice& device);
  void choosePreset(AVCaptureSession& session);
  void setCaptureSession(std::shared_ptr<AVCaptureSession> session);
  void installPreview();
  void stopCaptureSession();
  void switchCameraInputWithSender(NSObject* sender);

  void setUpContrastViews();
  void populateCameraMenu();
  void showControls();
  void performDetachedWindowTasks();
  void setCloseButtonHidden(bool isHidden);
  /// In a sentence; an empty one when nothing is the matter.
  void tellWhyEmpty(const std::string& reason);

  std::weak_ptr<NSView> noCamerasView_;
  std::shared_ptr<NSView> viewContainingVideo_;
  std::shared_ptr<NSPopUpButton> availableCamerasPopupButton_;
  /// Connected by the layout; the button is the way by which the cell is reached.
  NSPopUpButtonCell* PopUpButtonCell_ = nullptr;
  std::weak_ptr<NSView> popupContrastView_;
  std::weak_ptr<NSView> closeButtonContrastView_;
  std::unique_ptr<CameraManagement> cameras_;
  std::shared_ptr<AVCaptureVideoPreviewLayer> previewLayer_;
  std::shared_ptr<AVCaptureSession> captureSession_;
  PictureGestures gestures_;
  bool isDetached_ = false;
  UserDefaults& defaults_;
  std::shared_ptr<NSWindow> prefsWindow_;
  ObservationToken detachObserver_;
  ObservationToken sessionRuntimeErrorObserver_;
  ObservationToken sessionStartObserver_;
  ObservationToken sessionStopObserver_;
};

}  // namespace vistrel
