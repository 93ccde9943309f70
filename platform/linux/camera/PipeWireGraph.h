#pragma once

#include <pipewire/pipewire.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "linux/camera/PipeWireLink.h"
#include "linux/camera/PipeWireLoop.h"
#include "linux/camera/PipeWireNode.h"

namespace vistrel::camera {

struct ContextDeleter {
  void operator()(pw_context* context) const { pw_context_destroy(context); }
};
struct CoreDeleter {
  void operator()(pw_core* core) const { pw_core_disconnect(core); }
};

/// The connection to PipeWire's daemon and the cameras on its graph.
class PipeWireGraph : private PipeWireClient {
 public:
  explicit PipeWireGraph(desktop::Reactor& reactor);
  ~PipeWireGraph() override;
  PipeWireGraph(const PipeWireGraph&) = delete;
  PipeWireGraph& operator=(const PipeWireGraph&) = delete;

  /// False when no daemon answers.
  bool connect();
  [[nodiscard]] bool isConnected() const { return core_ != nullptr; }
  /// Called from the main loop after the daemon went away.
  void setLostHandler(std::function<void()> handler) { lostHandler_ = std::move(handler); }

  /// Takes in what has happened and waits, within bounds, for answers that are due. A daemon that hangs is
  /// waited for once.
  std::chrono::milliseconds refresh();
  /// True while the daemon owes an answer that has been waited for.
  [[nodiscard]] bool hangs() const { return hangs_; }
  [[nodiscard]] const std::vector<std::unique_ptr<PipeWireNode>>& nodes() const { return nodes_; }
  /// Null when no camera has the identifier (any more).
  [[nodiscard]] PipeWireNode* find(std::uint32_t globalId);
  /// Why the camera that this node reads does not deliver; null while all is well.
  [[nodiscard]] const std::string* linkError(std::uint32_t reader) const;
  /// A reader of ours has left the camera, which lets go of its device if nobody else reads it.
  void readerLeft(std::uint32_t camera, std::uint32_t reader);
  /// Takes a camera out of its error state, in which it would stay for some seconds, and refreshes.
  std::chrono::milliseconds clearError(PipeWireNode& node);

  [[nodiscard]] pw_core* core() const { return core_.get(); }
  [[nodiscard]] PipeWireLoop& loop() { return loop_; }

 private:
  static void onDone(void* data, std::uint32_t id, int seq);
  static void onError(void* data, std::uint32_t id, int seq, int result, const char* message);
  static void onGlobal(void* data, std::uint32_t id, std::uint32_t permissions, const char* type,
                       std::uint32_t version, const spa_dict* properties);
  static void onGlobalRemove(void* data, std::uint32_t id);

  void afterIteration() override;
  void deliver() override;
  void bindAnnounced();
  void bindNodes();
  void dropRemoved();
  void sync();
  void finishSuspending();
  void disconnect();

  PipeWireLoop loop_;
  std::unique_ptr<pw_context, ContextDeleter> context_;
  std::unique_ptr<pw_core, CoreDeleter> core_;
  std::unique_ptr<pw_registry, ProxyDeleter> registry_;
  spa_hook coreListener_{};
  spa_hook registryListener_{};
  std::vector<std::unique_ptr<PipeWireNode>> nodes_;
  std::vector<std::unique_ptr<PipeWireLink>> links_;

  struct AnnouncedLink {
    std::uint32_t globalId, camera, reader;
  };

  // Recorded by callbacks.
  std::vector<std::uint32_t> announced_;
  std::vector<AnnouncedLink> announcedLinks_;
  std::vector<std::uint32_t> removed_;
  int awaited_ = 0;
  int answered_ = 0;
  bool isLost_ = false;

  bool hangs_ = false;
  bool isLossUntold_ = false;
  std::function<void()> lostHandler_;
};

}  // namespace vistrel::camera
