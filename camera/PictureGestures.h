#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

#include "avfoundation/AVCaptureVideoPreviewLayer.h"
#include "foundation/NotificationCenter.h"

namespace vistrel {

class NSEvent;

/// What the user does to the picture by wheel, pinch, secondary button and keys: looks closer, moves the part
/// that is seen, and sees it as others do. Nothing of it outlives the layer. Main thread only.
class PictureGestures {
 public:
  /// The layer with the picture of this showing; null when there is none.
  void setLayer(std::shared_ptr<AVCaptureVideoPreviewLayer> layer);

  void scrollWheel(const NSEvent& event);
  void magnify(const NSEvent& event);
  void rightMouseDown(const NSEvent& event);
  void rightMouseDragged(const NSEvent& event);
  void rightMouseUp();
  /// Control with plus, minus, zero and the arrow keys; M, which shows the picture as the camera sends it
  /// while it is held, or, with a screen reader, until it is pressed again. False for any other key.
  bool performKeyEquivalent(const NSEvent& event);
  void keyUp(const NSEvent& event);

 private:
  [[nodiscard]] Point inLayer(Point inWindow) const;
  [[nodiscard]] Point pointerOrCenter() const;
  bool magnifyByKey(const NSEvent& event);
  bool panByKey(const NSEvent& event);
  bool mirrorByKey(const NSEvent& event);
  void showAsSent();
  void showAsBefore();

  std::shared_ptr<AVCaptureVideoPreviewLayer> layer_;
  std::optional<Point> draggedTo_;   // while the secondary button is held
  std::optional<bool> wasMirrored_;  // while the picture is as the camera sends it
  std::optional<std::uint16_t> heldKey_;
  std::array<ObservationToken, 2> keyboardObservers_;
};

}  // namespace vistrel
