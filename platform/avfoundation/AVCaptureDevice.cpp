#include "avfoundation/AVCaptureDevice.h"

#include <algorithm>
#include <map>

#include "backend/Backend.h"

namespace vistrel {

namespace {

using Known = std::map<std::string, std::weak_ptr<AVCaptureDevice>>;

Known& knownDevices() {
  static Known value;
  return value;
}

AVCaptureDeviceType typeOf(const backend::CameraDevice& device) {
  return device.isBuiltIn ? AVCaptureDeviceType::BuiltInWideAngleCamera
                          : AVCaptureDeviceType::ExternalUnknown;
}

}  // namespace

std::string AVCaptureDevice::description() const {
  return "<AVCaptureDevice: " + device_.localizedName + " [" + device_.id + "]>";
}

void AVCaptureDevice::setCenterStageControlMode(AVCaptureCenterStageControlMode mode) {
  backend::current().cameras().setCenterStageControlMode(static_cast<int>(mode));
}

void AVCaptureDevice::setCenterStageEnabled(bool isEnabled) {
  backend::current().cameras().setCenterStageEnabled(isEnabled);
}

AVCaptureDeviceDiscoverySession AVCaptureDeviceDiscoverySession::discoverySession(
    const std::vector<AVCaptureDeviceType>& deviceTypes, const std::string& mediaType,
    AVCaptureDevicePosition /*position*/) {
  AVCaptureDeviceDiscoverySession session;
  Known& known = knownDevices();
  std::erase_if(known, [](const auto& entry) { return entry.second.expired(); });
  for (const auto& entry : known) entry.second.lock()->device_.isConnected = false;
  if (mediaType != AVMediaTypeVideo) return session;
  for (const auto& present : backend::current().cameras().devices()) {
    if (std::find(deviceTypes.begin(), deviceTypes.end(), typeOf(present)) == deviceTypes.end()) continue;
    auto device = known[present.id].lock();
    if (!device) known[present.id] = device = std::make_shared<AVCaptureDevice>(present);
    device->device_ = present;
    session.devices_.push_back(std::move(device));
  }
  return session;
}

}  // namespace vistrel
