#pragma once

#include <memory>
#include <vector>

#include "appkit/NSView.h"
#include "swiftui/CustomView.h"
#include "swiftui/View.h"

namespace vistrel {

/// A view that shows a declarative one: makes and keeps its hosted controls, draws it again whenever its
/// state changes, and runs the appear actions when its window comes on screen. While a control of the
/// declarative view has the focus, the hosting view is the first responder.
class NSHostingView final : public NSView {
 public:
  explicit NSHostingView(std::shared_ptr<swiftui::CustomView> root);
  ~NSHostingView() override;

  /// What is shown now, hosted controls filled in. For backends.
  [[nodiscard]] const swiftui::View& content() const { return content_; }

  [[nodiscard]] bool acceptsFirstResponder() const override { return true; }
  void viewWillAppear() override;
  /// The backend's place of a hosted control, in this view's coordinates.
  static void placeHostedView(NSView& view, const Rect& frame);

 private:
  void redraw();
  void fillHostedViews();

  std::shared_ptr<swiftui::CustomView> root_;
  swiftui::View content_;
  std::vector<std::shared_ptr<NSView>> hosted_;  ///< in the order of their places
};

}  // namespace vistrel
