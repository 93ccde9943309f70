#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "linux/camera/CameraProvider.h"
#include "linux/camera/PipeWireGraph.h"
#include "linux/camera/V4l2Question.h"

namespace vistrel::camera {

/// The cameras on PipeWire's graph. Of a camera that has a device node the kernel is asked, too: PipeWire
/// cannot tell whether another program holds it.
class PipeWireProvider final : public CameraProvider {
 public:
  /// `system` must outlive the program's threads.
  PipeWireProvider(std::shared_ptr<PipeWireGraph> graph, V4l2System& system)
      : graph_(std::move(graph)), system_(system) {}

  [[nodiscard]] std::vector<CameraEntry> cameras() override;
  Result<std::unique_ptr<CaptureDevice>> open(const std::string& id) override;

 private:
  /// What the kernel tells of a node's place, which stays while the node does.
  struct Place {
    std::string device;  ///< the "/dev/video" node; empty for a camera that V4L2 does not know
    std::string path;
    std::string usbProduct;
    bool isBuiltIn = false;
    std::optional<PixelSize> sourceSize;  ///< as it was told at the last opening
  };

  void readPlaces();
  [[nodiscard]] bool isSeenThroughV4l2(const PipeWireNode& node) const;
  [[nodiscard]] std::optional<V4l2Answer> askKernel(const PipeWireNode& node,
                                                    std::chrono::milliseconds& waited);

  [[nodiscard]] std::optional<PixelSize> sourceSizeOf(const std::string& id,
                                                      const std::optional<V4l2Answer>& answer);

  std::shared_ptr<PipeWireGraph> graph_;
  V4l2System& system_;
  std::map<std::string, Place> places_;  // by the camera's identifier
};

}  // namespace vistrel::camera
