#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "appkit/CALayer.h"
#include "appkit/NSAppearance.h"
#include "appkit/NSResponder.h"
#include "base/Geometry.h"

namespace vistrel {

class NSWindow;

/// How a view lies in its superview, in points: distances to the edges that are given, a size that is given,
/// centred along an axis where nothing else is. Without anything it fills the superview.
struct ViewLayout {
  std::optional<double> left;
  std::optional<double> top;
  std::optional<double> right;
  std::optional<double> bottom;
  std::optional<double> width;
  std::optional<double> height;
  /// Added to each given distance: this share of the superview's height, so that margins grow with the
  /// picture.
  double scaledMargin = 0;

  [[nodiscard]] Rect frameIn(Size superview) const;
};

/// A region whose owner is told when the pointer comes and goes. The owner must outlive the view.
struct NSTrackingArea {
  Rect rect;
  std::uint64_t options = 0;
  NSResponder* owner = nullptr;

  static constexpr std::uint64_t kMouseEnteredAndExited = 0x01;
  static constexpr std::uint64_t kActiveAlways = 0x80;
};

enum class NSWindowOrderingMode { Above = 1, Below = -1 };
enum class NSFocusRingType { Default = 0, None = 1 };

/// A rectangle on screen with what lies in it. Coordinates have their origin at the top left.
class NSView : public NSResponder, public std::enable_shared_from_this<NSView> {
 public:
  NSView() = default;
  ~NSView() override;

  [[nodiscard]] const Rect& frame() const { return frame_; }
  /// Places the view in its superview and its subviews in it.
  void setFrame(const Rect& frame);
  [[nodiscard]] Rect bounds() const { return {0, 0, frame_.width, frame_.height}; }
  [[nodiscard]] Rect visibleRect() const { return bounds(); }
  [[nodiscard]] const ViewLayout& layout() const { return layout_; }
  void setLayout(const ViewLayout& layout) { layout_ = layout; }

  [[nodiscard]] bool isHidden() const { return isHidden_; }
  void setHidden(bool isHidden);
  [[nodiscard]] bool isHiddenOrHasHiddenAncestor() const;

  [[nodiscard]] NSView* superview() const { return superview_; }
  [[nodiscard]] const std::vector<std::shared_ptr<NSView>>& subviews() const { return subviews_; }
  void addSubview(const std::shared_ptr<NSView>& view);
  /// Next to `relativeTo` in the order from back to front; above or below all others when that is no subview.
  void addSubview(const std::shared_ptr<NSView>& view, NSWindowOrderingMode place, const NSView* relativeTo);
  void removeFromSuperview();
  [[nodiscard]] bool isDescendantOf(const NSView* view) const;

  [[nodiscard]] const std::shared_ptr<CALayer>& layer() const { return layer_; }
  void setLayer(std::shared_ptr<CALayer> layer);

  void addTrackingArea(const NSTrackingArea& area) { trackingAreas_.push_back(area); }
  void removeTrackingAreasOf(const NSResponder& owner);
  [[nodiscard]] const std::vector<NSTrackingArea>& trackingAreas() const { return trackingAreas_; }

  /// The view's own appearance, else its superview's, else its window's.
  [[nodiscard]] NSAppearance effectiveAppearance() const;
  void setAppearance(std::optional<NSAppearance> appearance) { appearance_ = std::move(appearance); }

  [[nodiscard]] NSFocusRingType focusRingType() const { return focusRingType_; }
  void setFocusRingType(NSFocusRingType type) { focusRingType_ = type; }

  [[nodiscard]] NSWindow* window() const;
  /// Only for the window whose content this is.
  void setWindow(NSWindow* window) { window_ = window; }
  [[nodiscard]] NSResponder* nextResponder() const override;

  [[nodiscard]] Point convertPointFromWindow(Point location) const;
  [[nodiscard]] Rect convertRectToWindow(const Rect& rect) const;

  /// The text by which a screen reader names the view.
  [[nodiscard]] const std::string& accessibilityLabel() const { return accessibilityLabel_; }
  void setAccessibilityLabel(std::string label) { accessibilityLabel_ = std::move(label); }
  /// What the view is for, as a screen reader says it after the name.
  [[nodiscard]] const std::string& accessibilityHelp() const { return accessibilityHelp_; }
  void setAccessibilityHelp(std::string text) { accessibilityHelp_ = std::move(text); }

  /// The size that the view's content asks for; none where it has no wish.
  [[nodiscard]] virtual Size intrinsicContentSize() const { return {}; }
  /// False: Tab and the like pass the view by.
  [[nodiscard]] virtual bool canBecomeKeyView() const { return acceptsFirstResponder(); }

  /// The window with this content comes on screen.
  virtual void viewWillAppear() {}

  /// Tells the native window that it should draw the view again.
  void didChange();

  /// The user pressed the view's native control.
  virtual void performClick(NSObject* /*sender*/) {}

 private:
  void layoutSubviews();
  void subviewsDidChange();

  Rect frame_;
  ViewLayout layout_;
  bool isHidden_ = false;
  NSView* superview_ = nullptr;
  std::vector<std::shared_ptr<NSView>> subviews_;
  std::shared_ptr<CALayer> layer_;
  std::vector<NSTrackingArea> trackingAreas_;
  std::optional<NSAppearance> appearance_;
  NSFocusRingType focusRingType_ = NSFocusRingType::Default;
  NSWindow* window_ = nullptr;
  std::string accessibilityLabel_;
  std::string accessibilityHelp_;
};

}  // namespace vistrel
