#pragma once

#include <pipewire/pipewire.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "linux/camera/VideoMode.h"

namespace vistrel::camera {

struct ProxyDeleter {
  template <class T>
  void operator()(T* proxy) const {
    pw_proxy_destroy(reinterpret_cast<pw_proxy*>(proxy));
  }
};

/// A camera on PipeWire's graph: its properties, its formats and its state, kept current.
class PipeWireNode {
 public:
  PipeWireNode(pw_registry* registry, std::uint32_t globalId);
  ~PipeWireNode();
  PipeWireNode(const PipeWireNode&) = delete;
  PipeWireNode& operator=(const PipeWireNode&) = delete;

  [[nodiscard]] std::uint32_t globalId() const { return globalId_; }
  /// The value of a property; nullptr when the node has none of that name.
  [[nodiscard]] const std::string* property(std::string_view key) const;
  /// The "/dev/video" node behind the camera; empty for one that V4L2 does not know.
  [[nodiscard]] std::string v4l2Path() const;
  [[nodiscard]] const std::vector<VideoMode>& modes() const { return modes_; }
  /// True when PipeWire does not hold the camera's device.
  [[nodiscard]] bool isSuspended() const { return state_ == PW_NODE_STATE_SUSPENDED; }
  [[nodiscard]] bool isInError() const { return state_ == PW_NODE_STATE_ERROR; }
  /// How often the node has gone into its error state, and what it said the last time.
  [[nodiscard]] int errorCount() const { return errorCount_; }
  [[nodiscard]] const std::string& lastError() const { return lastError_; }

  /// Has the camera let go of its device once this reader, the last one, has left it: the session manager
  /// does that some seconds later only. Another reader that comes before takes it back.
  void suspendAfter(std::uint32_t reader);
  void readerCame(std::uint32_t reader);
  void keepAwake() { leaving_.reset(); }
  [[nodiscard]] bool isSuspendDue() const { return leaving_ && !isSuspended(); }
  /// Outside of the library's callbacks: sends what is due by the state that they recorded.
  void suspendIfDue();

  /// Asks for the formats again if they have changed. True when it did, so that the answer must be awaited.
  bool askForFormats();
  /// Everything that was asked for has been answered.
  void answered();

 private:
  static void onInfo(void* data, const pw_node_info* info);
  static void onParam(void* data, int seq, std::uint32_t id, std::uint32_t index, std::uint32_t next,
                      const spa_pod* param);
  void recordState(const pw_node_info& info);
  void recordFormats(const pw_node_info& info);

  std::uint32_t globalId_;
  std::unique_ptr<pw_node, ProxyDeleter> proxy_;
  spa_hook listener_{};
  std::map<std::string, std::string, std::less<>> properties_;
  std::vector<VideoMode> modes_;
  std::uint32_t formatFlags_ = 0;
  bool hasNewFormats_ = false;
  bool areModesOld_ = false;
  pw_node_state state_ = PW_NODE_STATE_CREATING;
  std::optional<std::uint32_t> leaving_;  // the reader after which the camera is suspended
  int errorCount_ = 0;
  std::string lastError_;
};

}  // namespace vistrel::camera
