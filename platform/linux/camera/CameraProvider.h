#pragma once

#include <memory>
#include <string>
#include <vector>

#include "backend/Camera.h"
#include "base/Result.h"
#include "linux/camera/CaptureDevice.h"

namespace vistrel::camera {

/// A usable camera as one provider lists it.
struct CameraEntry {
  backend::CameraDevice device;
  /// Where it is attached, by which the list is ordered.
  std::string path;
};

/// One way to the cameras. Main thread only.
class CameraProvider {
 public:
  virtual ~CameraProvider() = default;
  /// The usable cameras of this moment, in any order, each once.
  [[nodiscard]] virtual std::vector<CameraEntry> cameras() = 0;
  /// The error tells whether the camera is gone, busy or denied, or does not answer and was never heard of. A
  /// slow one goes on opening as it starts.
  virtual Result<std::unique_ptr<CaptureDevice>> open(const std::string& id) = 0;
};

}  // namespace vistrel::camera
