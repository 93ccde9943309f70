#pragma once

#include <memory>

#include "linux/camera/CameraProvider.h"
#include "linux/camera/PipeWireGraph.h"

namespace vistrel::camera {

/// The cameras on PipeWire's graph.
class PipeWireProvider final : public CameraProvider {
 public:
  explicit PipeWireProvider(std::shared_ptr<PipeWireGraph> graph) : graph_(std::move(graph)) {}

  [[nodiscard]] std::vector<CameraEntry> cameras() override;
  Result<std::unique_ptr<CaptureDevice>> open(const std::string& id) override;

 private:
  std::shared_ptr<PipeWireGraph> graph_;
};

}  // namespace vistrel::camera
