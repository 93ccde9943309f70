#include "camera/CameraManagement.h"

#include "app/PreferenceKeys.h"
#include "base/Log.h"
#include "base/Unicode.h"

namespace vistrel {

CameraManagement::CameraManagement() : defaults_(UserDefaults::standard()) {
  refreshDevices();
  selectDefaultCamera();
}

bool CameraManagement::isSelected(const std::string& name) const {
  return selectedDevice_ && unicode::areEqual(selectedDevice_->localizedName(), name);
}

void CameraManagement::refreshDevices() {
  const auto discovery = AVCaptureDeviceDiscoverySession::discoverySession(
      {AVCaptureDeviceType::BuiltInWideAngleCamera, AVCaptureDeviceType::ExternalUnknown}, AVMediaTypeVideo,
      AVCaptureDevicePosition::Unspecified);
  availableCameras_.clear();
  for (const auto& device : discovery.devices()) {
    if (device->isConnected() && !device->isSuspended()) availableCameras_.push_back(device);
  }
  Log::line("📷 Refreshed Devices — available cameras: " + availableCamerasDescription());
}

std::string CameraManagement::availableCamerasDescription() const {
  std::string text = "[";
  for (const auto& device : availableCameras_) {
    if (text.size() > 1) text += ", ";
    text += device->description();
  }
  return text + "]";
}

void CameraManagement::selectDefaultCamera() {
  const auto first = availableCameras_.empty() ? nullptr : availableCameras_.front();
  const auto stored = defaults_.stringForKey(preference::kDefaultCamera);
  if (!stored) {
    selectedDevice_ = first;
    return;
  }
  Log::line("Detected a user preference: " + *stored);
  if (selectCamerasNamed(*stored)) return;
  Log::line("Could't find default camera, reverting to system setting");
  selectedDevice_ = first;
}

bool CameraManagement::selectCamerasNamed(const std::string& name) {
  bool isFound = false;
  for (const auto& device : availableCameras_) {
    if (!unicode::areEqual(device->localizedName(), name)) continue;
    selectedDevice_ = device;
    isFound = true;
  }
  return isFound;
}

void CameraManagement::saveDefaultCamera(const std::string& name) {
  for (const auto& device : availableCameras_) {
    if (!unicode::areEqual(device->localizedName(), name)) continue;
    selectedDevice_ = device;
    Log::line("⚠️ Saving default camera: " + device->localizedName());
    defaults_.setString(device->localizedName(), preference::kDefaultCamera);
  }
}

}  // namespace vistrel
