#include "appkit/NSView.h"

#include <algorithm>
#include <utility>

#include "appkit/NSWindow.h"

namespace vistrel {

namespace {

struct Span {
  double start = 0;
  double length = 0;
};

// One axis of a layout: `low` and `high` are the distances to the edges.
Span spanIn(double available, std::optional<double> low, std::optional<double> high,
            std::optional<double> length, double margin) {
  if (low) *low += margin;
  if (high) *high += margin;
  if (length) {
    if (low) return {*low, *length};
    if (high) return {available - *high - *length, *length};
    return {(available - *length) / 2, *length};
  }
  const double start = low.value_or(0);
  return {start, std::max(0.0, available - start - high.value_or(0))};
}

}  // namespace

Rect ViewLayout::frameIn(Size superview) const {
  const double margin = scaledMargin * superview.height;
  const Span x = spanIn(superview.width, left, right, width, margin);
  const Span y = spanIn(superview.height, top, bottom, height, margin);
  return {x.start, y.start, x.length, y.length};
}

NSView::~NSView() {
  if (layer_) layer_->setOwner(nullptr);
  for (const auto& view : subviews_) view->superview_ = nullptr;
}

void NSView::setFrame(const Rect& frame) {
  frame_ = frame;
  layoutSubviews();
  didChange();
}

void NSView::layoutSubviews() {
  for (const auto& view : subviews_) view->setFrame(view->layout_.frameIn({frame_.width, frame_.height}));
}

void NSView::setHidden(bool isHidden) {
  if (isHidden_ == isHidden) return;
  isHidden_ = isHidden;
  didChange();
}

bool NSView::isHiddenOrHasHiddenAncestor() const {
  return isHidden_ || (superview_ && superview_->isHiddenOrHasHiddenAncestor());
}

void NSView::addSubview(const std::shared_ptr<NSView>& view) {
  addSubview(view, NSWindowOrderingMode::Above, nullptr);
}

void NSView::addSubview(const std::shared_ptr<NSView>& view, NSWindowOrderingMode place,
                        const NSView* relativeTo) {
  // A copy of its own: what the argument refers to may go while this runs.
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
  const auto kept = view;
  kept->removeFromSuperview();
  const auto isReference = [&](const auto& other) { return other.get() == relativeTo; };
  auto position = std::find_if(subviews_.begin(), subviews_.end(), isReference);
  if (position == subviews_.end()) {
    position = place == NSWindowOrderingMode::Above ? subviews_.end() : subviews_.begin();
  } else if (place == NSWindowOrderingMode::Above) {
    ++position;
  }
  subviews_.insert(position, kept);
  kept->superview_ = this;
  kept->setFrame(kept->layout_.frameIn({frame_.width, frame_.height}));
  subviewsDidChange();
}

void NSView::removeFromSuperview() {
  if (!superview_) return;
  NSView* parent = std::exchange(superview_, nullptr);
  const auto kept = shared_from_this();
  // The focus never stays behind in a view that has left.
  if (NSWindow* onWindow = parent->window()) {
    const auto* focused = dynamic_cast<NSView*>(onWindow->firstResponder());
    if (focused && (focused == this || focused->isDescendantOf(this))) onWindow->makeFirstResponder(nullptr);
  }
  std::erase(parent->subviews_, kept);
  parent->subviewsDidChange();
}

bool NSView::isDescendantOf(const NSView* view) const {
  return this == view || (superview_ && superview_->isDescendantOf(view));
}

void NSView::setLayer(std::shared_ptr<CALayer> layer) {
  if (layer_) layer_->setOwner(nullptr);
  layer_ = std::move(layer);
  if (layer_) layer_->setOwner(this);
  didChange();
}

void NSView::removeTrackingAreasOf(const NSResponder& owner) {
  std::erase_if(trackingAreas_, [&](const auto& area) { return area.owner == &owner; });
}

NSAppearance NSView::effectiveAppearance() const {
  if (appearance_) return *appearance_;
  if (superview_) return superview_->effectiveAppearance();
  return window_ ? window_->effectiveAppearance() : NSAppearance{};
}

NSWindow* NSView::window() const { return superview_ ? superview_->window() : window_; }

NSResponder* NSView::nextResponder() const {
  if (NSResponder* next = NSResponder::nextResponder()) return next;
  if (superview_) return superview_;
  return window_;
}

Point NSView::convertPointFromWindow(Point location) const {
  const Point inParent = superview_ ? superview_->convertPointFromWindow(location) : location;
  return superview_ ? Point{inParent.x - frame_.x, inParent.y - frame_.y} : inParent;
}

Rect NSView::convertRectToWindow(const Rect& rect) const {
  if (!superview_) return rect;
  return superview_->convertRectToWindow({rect.x + frame_.x, rect.y + frame_.y, rect.width, rect.height});
}

void NSView::didChange() {
  if (NSWindow* onWindow = window()) onWindow->viewDidChange(*this);
}

void NSView::subviewsDidChange() {
  if (NSWindow* onWindow = window()) onWindow->contentDidChange();
}

}  // namespace vistrel
