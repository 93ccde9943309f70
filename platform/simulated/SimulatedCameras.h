#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "backend/Camera.h"
#include "simulated/SimulatedMainLoop.h"

namespace vistrel::simulated {

class SimulatedStream;

/// How a simulated camera answers to being started.
enum class StartBehavior { Runs, HangsForEver, StartsLater, RefusesFormat };

/// A camera that obeys. `sizes` are those that it reaches at 24 frames a second or more.
struct SimulatedCamera {
  backend::CameraDevice device;
  std::vector<PixelSize> sizes = {{1280, 720}};
  StartBehavior behavior = StartBehavior::Runs;
  std::string openError;
  std::vector<SimulatedStream*> streams;
};

/// The cameras of the simulated desktop.
class SimulatedCameras final : public backend::Cameras {
 public:
  explicit SimulatedCameras(SimulatedMainLoop& loop) : loop_(loop) {}

  std::vector<backend::CameraDevice> devices() override;
  Result<std::unique_ptr<backend::CameraStream>> open(const std::string& id) override;
  void setCenterStageControlMode(int mode) override {
    centerStageCalls.push_back("mode " + std::to_string(mode));
  }
  void setCenterStageEnabled(bool isEnabled) override {
    centerStageCalls.push_back(isEnabled ? "enabled" : "disabled");
  }

  SimulatedCamera& plug(const std::string& name);
  void unplug(const std::string& name);
  [[nodiscard]] SimulatedCamera& camera(const std::string& name);
  /// Streams that run or try to, of all cameras: what keeps camera lights on.
  [[nodiscard]] std::size_t openStreams() const;
  /// What the last started stream was asked for, as "1920x1080" or "own choice".
  std::string lastStart;
  std::vector<std::string> centerStageCalls;
  /// Called when a stream that does not come keeps the main thread waiting.
  std::function<void()> whileWaiting;

 private:
  friend class SimulatedStream;
  SimulatedMainLoop& loop_;
  std::vector<std::shared_ptr<SimulatedCamera>> cameras_;
  int nextId_ = 1;
};

/// An opened simulated camera.
class SimulatedStream final : public backend::CameraStream {
 public:
  SimulatedStream(SimulatedCameras& owner, std::shared_ptr<SimulatedCamera> camera);
  ~SimulatedStream() override;

  [[nodiscard]] bool supports(PixelSize size) const override;
  void begin(std::optional<PixelSize> size, backend::CameraStreamClient& client) override;
  backend::StreamStart awaitStart(std::chrono::milliseconds patience) override;
  void stop() override;
  [[nodiscard]] std::chrono::milliseconds silence() const override { return owner_.loop_.now() - lastFrame_; }
  [[nodiscard]] bool hasSentPicture() const override { return hasSentPicture_; }
  [[nodiscard]] bool sendsUnusableFrames() const override { return false; }
  [[nodiscard]] PixelSize pictureSize() const override {
    return hasPicture_ ? camera_->sizes.front() : PixelSize{};
  }
  void clearPicture() override { hasPicture_ = false; }

  void sendFrame();
  /// Ends a pending start.
  void begin();
  void fail(const std::string& reason);
  [[nodiscard]] bool isActive() const { return client_ != nullptr; }
  [[nodiscard]] bool hasPicture() const { return hasPicture_; }

 private:
  SimulatedCameras& owner_;
  std::shared_ptr<SimulatedCamera> camera_;
  std::shared_ptr<SimulatedStream*> self_;
  backend::CameraStreamClient* client_ = nullptr;
  std::chrono::milliseconds lastFrame_{0};
  bool hasPicture_ = false;
  bool hasSentPicture_ = false;
};

}  // namespace vistrel::simulated
