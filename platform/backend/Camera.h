#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Geometry.h"
#include "base/Result.h"

namespace vistrel::backend {

/// One usable camera as the desktop has it. A backend lists each camera once: no metadata nodes, no camera
/// seen twice through two providers, no infrared- or grey-only sensor.
struct CameraDevice {
  /// Key of the camera, unique and stable while it stays plugged in.
  std::string id;
  /// The device's own name, UTF-8, the same through every provider.
  std::string localizedName;
  bool isBuiltIn = false;
  bool isConnected = true;
  /// Attached but unusable for now, such as behind a closed lid.
  bool isSuspended = false;
  /// The platform's automatic framing is at work for this camera.
  bool isCenterStageActive = false;
};

/// Told about a stream that was started. Called on the main thread, from the main loop, never from inside a
/// call into the stream.
class CameraStreamClient {
 public:
  virtual ~CameraStreamClient() = default;
  /// A start that was pending has succeeded. Not called when `awaitStart` itself answered `Running`.
  virtual void streamDidStart() = 0;
  /// The stream has ended by itself and delivers nothing more: unplugged, refused format, device error.
  virtual void streamDidFail(const Error& error) = 0;
};

enum class StreamStart { Running, Pending, Failed };

/// One opened camera. Main thread only. Destroying it stops it and gives the device back.
class CameraStream {
 public:
  virtual ~CameraStream() = default;

  /// True when the camera reaches `size` at 24 frames a second or more, in any format that can be shown.
  [[nodiscard]] virtual bool supports(PixelSize size) const = 0;

  /// Asks for pictures of `size`, or, with none, of the backend's own choice: the largest size up to
  /// 1920 × 1080 that reaches 24 frames a second, else the fastest, the larger of equals. Waits for nothing.
  /// `client` must outlive the stream or its `stop`.
  virtual void begin(std::optional<PixelSize> size, CameraStreamClient& client) = 0;

  /// Waits for what was begun, at most `patience`. `Pending` means that the start goes on by itself and the
  /// client will hear of it. A `Failed` start is reported to the client too, from the main loop.
  virtual StreamStart awaitStart(std::chrono::milliseconds patience) = 0;

  /// Ends the stream and closes the device within 100 ms. The client hears nothing afterwards.
  virtual void stop() = 0;

  /// For how long no frame has come that could be shown: since the last one, or since `begin`.
  [[nodiscard]] virtual std::chrono::milliseconds silence() const = 0;
  /// Whether one has come since `begin`.
  [[nodiscard]] virtual bool hasSentPicture() const = 0;
  /// Whether frames came in that time, of which none could be shown.
  [[nodiscard]] virtual bool sendsUnusableFrames() const = 0;

  /// The size of the pictures as they are seen, upright; 0 × 0 while there is nothing to show (no good frame
  /// yet, cleared, stopped).
  [[nodiscard]] virtual PixelSize pictureSize() const = 0;

  /// Drops the picture, so that the glass shows a neutral surface instead of a frozen one.
  virtual void clearPicture() = 0;
};

/// The cameras of the desktop.
class Cameras {
 public:
  virtual ~Cameras() = default;

  /// The cameras of this moment, built-in ones first, each kind in a stable order. Costs nothing: a listener
  /// keeps the list current.
  [[nodiscard]] virtual std::vector<CameraDevice> devices() = 0;

  /// Opens a camera. The error tells whether it is gone, busy or denied.
  virtual Result<std::unique_ptr<CameraStream>> open(const std::string& id) = 0;

  /// Automatic framing, where the platform has it; `mode` is the platform's raw value.
  virtual void setCenterStageControlMode(int /*mode*/) {}
  virtual void setCenterStageEnabled(bool /*isEnabled*/) {}
};

}  // namespace vistrel::backend
