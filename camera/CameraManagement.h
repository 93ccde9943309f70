#pragma once

#include <memory>
#include <string>
#include <vector>

#include "avfoundation/AVCaptureDevice.h"
#include "foundation/UserDefaults.h"

namespace vistrel {

/// Which cameras there are and which one the user wants to see: the one chosen last, else the first. Cameras
/// are identified by name alone; of several with one name the last wins. Main thread only.
class CameraManagement {
 public:
  using Devices = std::vector<std::shared_ptr<AVCaptureDevice>>;

  /// Refreshes the list and settles the selection.
  CameraManagement();

  /// The usable cameras of the last refresh, in the platform's order.
  [[nodiscard]] const Devices& availableCameras() const { return availableCameras_; }
  /// The camera to show; none when there is none. A refresh leaves it alone.
  [[nodiscard]] const std::shared_ptr<AVCaptureDevice>& selectedDevice() const { return selectedDevice_; }
  /// True when the selected camera bears that name.
  [[nodiscard]] bool isSelected(const std::string& name) const;

  void refreshDevices();
  /// Settles the selection from the stored name; the stored name stays when no camera bears it.
  void selectDefaultCamera();
  /// Selects the camera of that name and stores the name; a name that no listed camera bears changes nothing.
  void saveDefaultCamera(const std::string& name);

  /// The list as text for a log line.
  [[nodiscard]] std::string availableCamerasDescription() const;

 private:
  bool selectCamerasNamed(const std::string& name);

  UserDefaults& defaults_;
  Devices availableCameras_;
  std::shared_ptr<AVCaptureDevice> selectedDevice_;
};

}  // namespace vistrel
