#pragma once

#include <memory>
#include <string>
#include <vector>

#include "backend/Camera.h"

namespace vistrel {

inline constexpr const char* AVMediaTypeVideo = "vide";

enum class AVCaptureDeviceType { BuiltInWideAngleCamera, ExternalUnknown };
enum class AVCaptureDevicePosition { Unspecified = 0 };
enum class AVCaptureCenterStageControlMode { User = 0, App = 1, Cooperative = 2 };

/// A camera, the same object for as long as somebody holds it. What it says of itself is as of the last
/// discovery, but for `isConnected`, which a discovery also updates on cameras that it no longer finds.
class AVCaptureDevice {
 public:
  explicit AVCaptureDevice(backend::CameraDevice device) : device_(std::move(device)) {}

  [[nodiscard]] const std::string& uniqueID() const { return device_.id; }
  [[nodiscard]] const std::string& localizedName() const { return device_.localizedName; }
  [[nodiscard]] bool isConnected() const { return device_.isConnected; }
  [[nodiscard]] bool isSuspended() const { return device_.isSuspended; }
  [[nodiscard]] bool isCenterStageActive() const { return device_.isCenterStageActive; }
  /// One line for a log.
  [[nodiscard]] std::string description() const;

  static void setCenterStageControlMode(AVCaptureCenterStageControlMode mode);
  static void setCenterStageEnabled(bool isEnabled);

 private:
  friend class AVCaptureDeviceDiscoverySession;
  backend::CameraDevice device_;
};

/// A look at the cameras of this moment.
class AVCaptureDeviceDiscoverySession {
 public:
  [[nodiscard]] static AVCaptureDeviceDiscoverySession discoverySession(
      const std::vector<AVCaptureDeviceType>& deviceTypes, const std::string& mediaType,
      AVCaptureDevicePosition position);

  /// In the platform's order.
  [[nodiscard]] const std::vector<std::shared_ptr<AVCaptureDevice>>& devices() const { return devices_; }

 private:
  std::vector<std::shared_ptr<AVCaptureDevice>> devices_;
};

}  // namespace vistrel
