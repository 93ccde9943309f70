#pragma once

#include <pipewire/pipewire.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "linux/camera/PipeWireNode.h"

namespace vistrel::camera {

/// A link on PipeWire's graph from a camera to a reader. When a camera refuses, only its link says why.
class PipeWireLink {
 public:
  PipeWireLink(pw_registry* registry, std::uint32_t globalId, std::uint32_t camera, std::uint32_t reader);
  ~PipeWireLink();
  PipeWireLink(const PipeWireLink&) = delete;
  PipeWireLink& operator=(const PipeWireLink&) = delete;

  [[nodiscard]] std::uint32_t globalId() const { return globalId_; }
  /// The node that is read.
  [[nodiscard]] std::uint32_t camera() const { return camera_; }
  /// The node that reads.
  [[nodiscard]] std::uint32_t reader() const { return reader_; }
  /// What a link that failed says; none while all is well.
  [[nodiscard]] const std::optional<std::string>& error() const { return error_; }

 private:
  static void onInfo(void* data, const pw_link_info* info);

  std::uint32_t globalId_;
  std::uint32_t camera_;
  std::uint32_t reader_;
  std::unique_ptr<pw_link, ProxyDeleter> proxy_;
  spa_hook listener_{};
  std::optional<std::string> error_;
};

}  // namespace vistrel::camera
