#pragma once

#include <pipewire/pipewire.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "linux/camera/CaptureDevice.h"
#include "linux/camera/PipeWireFormats.h"
#include "linux/camera/PipeWireGraph.h"
#include "linux/camera/StreamBuffer.h"

namespace vistrel::camera {

struct StreamDeleter {
  void operator()(pw_stream* stream) const { pw_stream_destroy(stream); }
};

/// A camera through a PipeWire stream. Of the buffers only the one with the newest frame is held.
class PipeWireDevice final : public CaptureDevice, private PipeWireClient {
 public:
  /// `source`: the size of what the camera sees, where it is known. `waited`: what the opening took already.
  /// Opening and first start share one patience, so that the first start is waited for that much less.
  PipeWireDevice(std::shared_ptr<PipeWireGraph> graph, const PipeWireNode& node,
                 std::optional<PixelSize> source, std::chrono::milliseconds waited);
  ~PipeWireDevice() override;

  [[nodiscard]] const std::vector<VideoMode>& modes() const override { return modes_; }
  void begin(const ModeChoice& mode, CaptureClient& client) override;
  backend::StreamStart awaitStart(std::chrono::milliseconds patience) override;
  void stop() override;
  [[nodiscard]] std::optional<Frame> frame() const override { return frame_; }
  [[nodiscard]] Orientation orientation() const override { return orientation_; }

 private:
  static void onState(void* data, pw_stream_state old, pw_stream_state state, const char* error);
  static void onParam(void* data, std::uint32_t id, const spa_pod* param);
  static void onAddBuffer(void* data, pw_buffer* buffer);
  static void onRemoveBuffer(void* data, pw_buffer* buffer);
  static void onProcess(void* data);

  void afterIteration() override;
  void deliver() override;
  void connectionLost() override;

  bool openStream(const ModeChoice& mode);
  void closeStream();
  void waitForStream(std::chrono::milliseconds patience);
  void fail(Error error);
  void hold(pw_buffer* buffer);
  void letGo();
  [[nodiscard]] std::optional<Frame> frameIn(const pw_buffer& buffer) const;

  std::shared_ptr<PipeWireGraph> graph_;
  std::uint32_t nodeId_;
  std::string target_;
  std::vector<VideoMode> modes_;
  std::chrono::milliseconds waited_;
  CaptureClient* client_ = nullptr;
  std::unique_ptr<pw_stream, StreamDeleter> stream_;
  spa_hook listener_{};
  int errorsBefore_ = 0;

  // Recorded by callbacks.
  pw_stream_state state_ = PW_STREAM_STATE_UNCONNECTED;
  std::string stateError_;
  std::optional<AgreedFormat> agreed_;
  std::map<const pw_buffer*, StreamBuffer> buffers_;
  pw_buffer* held_ = nullptr;
  std::optional<Frame> frame_;
  Orientation orientation_;

  bool isFrameUntold_ = false;
  bool isUnusableUntold_ = false;
  bool isStartUntold_ = false;
  std::optional<Error> failure_;
};

}  // namespace vistrel::camera
