#pragma once

#include <optional>

namespace vistrel {

class NSView;

/// A color in generic RGB, components from 0 to 1.
struct CGColor {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;
  bool operator==(const CGColor&) const = default;
};

/// What a view shows behind its subviews. It fills the view.
class CALayer {
 public:
  CALayer() = default;
  CALayer(const CALayer&) = delete;
  CALayer& operator=(const CALayer&) = delete;
  virtual ~CALayer() = default;

  [[nodiscard]] const std::optional<CGColor>& backgroundColor() const { return backgroundColor_; }
  void setBackgroundColor(const CGColor& color);
  /// In points.
  [[nodiscard]] double cornerRadius() const { return cornerRadius_; }
  void setCornerRadius(double radius);
  [[nodiscard]] bool isHidden() const { return isHidden_; }
  void setHidden(bool isHidden);

  /// Has the view drawn again.
  void setNeedsDisplay();

  /// The view that shows the layer; kept by that view.
  void setOwner(NSView* owner) { owner_ = owner; }
  [[nodiscard]] NSView* owner() const { return owner_; }

 private:
  std::optional<CGColor> backgroundColor_;
  double cornerRadius_ = 0;
  bool isHidden_ = false;
  NSView* owner_ = nullptr;
};

/// What is meant to be on screen and has not been sent to it yet.
class CATransaction {
 public:
  /// Puts it there now, a window that is about to appear included. For who is about to block the main thread.
  static void flush();
};

}  // namespace vistrel
