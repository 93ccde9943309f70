#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>

#include "backend/Camera.h"
#include "base/Result.h"
#include "linux/camera/Picture.h"
#include "linux/camera/VideoMode.h"

namespace vistrel::camera {

/// Told about a running device, on the main thread, from the main loop.
class CaptureClient {
 public:
  virtual ~CaptureClient() = default;
  /// A start that was pending has succeeded.
  virtual void captureStarted() = 0;
  /// The device holds a newer frame.
  virtual void frameArrived() = 0;
  /// A frame came that cannot be shown; the device still holds the one before it.
  virtual void unusableFrameArrived() = 0;
  /// The device delivers nothing more and holds no frame. May destroy the device.
  virtual void captureFailed(const Error& error) = 0;
};

/// A raw frame in the device's own memory, or the bytes of a compressed one.
using Frame = std::variant<Picture, std::span<const std::uint8_t>>;

/// An opened camera of one provider. Main thread only; destroying it stops it.
class CaptureDevice {
 public:
  virtual ~CaptureDevice() = default;

  [[nodiscard]] virtual const std::vector<VideoMode>& modes() const = 0;
  /// Begins a run, as backend::CameraStream describes it. `client` must live until `stop`.
  virtual void begin(const ModeChoice& mode, CaptureClient& client) = 0;
  virtual backend::StreamStart awaitStart(std::chrono::milliseconds patience) = 0;
  /// Gives every buffer back and ends the stream; nothing is called afterwards.
  virtual void stop() = 0;
  /// The newest frame, in place, valid until control returns to the main loop. None when there is none.
  [[nodiscard]] virtual std::optional<Frame> frame() const = 0;
  /// How the newest frame lies in memory. Upright where the camera does not say.
  [[nodiscard]] virtual Orientation orientation() const { return {}; }
};

}  // namespace vistrel::camera
