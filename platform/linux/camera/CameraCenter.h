#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/Camera.h"
#include "linux/camera/CameraProvider.h"
#include "linux/camera/FileWatch.h"
#include "linux/camera/PipeWireGraph.h"
#include "linux/camera/Reactor.h"

namespace vistrel::capture {

/// The order of the list: what is built in first, then by where it is attached.
[[nodiscard]] bool isListedBefore(const CameraEntry& a, const CameraEntry& b);

/// The cameras of a Linux desktop: through PipeWire while its daemon runs, else directly through V4L2. The
/// streams it opens are `CaptureStream`s, so each is a `GlassSource` too.
class CameraCenter final : public host::CameraHost {
 public:
  /// `reactor` must outlive the center and every stream that it opened.
  explicit CameraCenter(Reactor& reactor);
  ~CameraCenter() override;

  [[nodiscard]] std::vector<host::CameraDevice> devices() override;
  Result<std::unique_ptr<host::CameraStream>> open(const std::string& id) override;

 private:
  void connect(int attempts);
  void useV4l2();
  void watchForDaemon();

  Reactor& reactor_;
  std::shared_ptr<PipeWireGraph> graph_;
  std::unique_ptr<CameraProvider> provider_;
  std::unique_ptr<FileWatch> daemonWatch_;
  std::unique_ptr<Registration> retry_;
};

}  // namespace vistrel::capture
