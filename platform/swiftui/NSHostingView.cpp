#include "swiftui/NSHostingView.h"

#include <utility>

namespace vistrel {

using swiftui::HostedContent;

namespace {

ViewLayout layoutAt(const Rect& frame) {
  ViewLayout layout;
  layout.left = frame.x;
  layout.top = frame.y;
  layout.width = frame.width;
  layout.height = frame.height;
  return layout;
}

// In a row of a text and a control, the text is what a screen reader calls the control.
void nameHostedView(const swiftui::View& row) {
  const auto& parts = row.children();
  if (!std::holds_alternative<swiftui::StackContent>(row.content) || parts.size() != 2) return;
  const auto* hosted = std::get_if<HostedContent>(&parts[1].content);
  if (hosted && hosted->view->accessibilityLabel().empty()) {
    hosted->view->setAccessibilityLabel(parts[0].text());
  }
}

}  // namespace

NSHostingView::NSHostingView(std::shared_ptr<swiftui::CustomView> root)
    : root_(std::move(root)), content_(root_->body()) {
  root_->setRedrawHandler([this] { redraw(); });
  fillHostedViews();
}

NSHostingView::~NSHostingView() { root_->setRedrawHandler({}); }

void NSHostingView::viewWillAppear() {
  // A copy: the actions change the state, and with it the content.
  const swiftui::View shown = content_;
  shown.walk([](const swiftui::View& view) {
    if (view.appearAction) view.appearAction();
  });
}

void NSHostingView::redraw() {
  content_ = root_->body();
  fillHostedViews();
  didChange();
}

void NSHostingView::fillHostedViews() {
  std::size_t place = 0;
  content_.walk([&](swiftui::View& view) {
    auto* hosted = std::get_if<HostedContent>(&view.content);
    if (!hosted) return;
    if (place == hosted_.size()) {
      hosted_.push_back(hosted->representable->makeNSView());
      // Its place is the backend's to find.
      hosted_.back()->setLayout(layoutAt({}));
      addSubview(hosted_.back());
    }
    hosted->view = hosted_[place++];
    hosted->representable->updateNSView(*hosted->view);
  });
  content_.walk([](swiftui::View& view) { nameHostedView(view); });
}

void NSHostingView::placeHostedView(NSView& view, const Rect& frame) {
  if (view.frame() == frame) return;
  view.setLayout(layoutAt(frame));
  view.setFrame(frame);
}

}  // namespace vistrel
