#include "linux/widgets/ViewTree.h"

#include <array>

#include "linux/widgets/QtControls.h"
#include "linux/widgets/QtHostingView.h"
#include "linux/widgets/QtSearchField.h"

namespace vistrel::widgets {

namespace {

using Maker = std::unique_ptr<QtView> (*)(NSView& view, ViewClient& client);

template <class View, class Widget>
std::unique_ptr<QtView> make(NSView& view, ViewClient& client) {
  auto* known = dynamic_cast<View*>(&view);
  return known ? std::make_unique<Widget>(*known, client) : nullptr;
}

// Subclasses before their bases.
constexpr std::array<Maker, 6> kMakers = {
    make<NSPopUpButton, QtPopUpButton>, make<NSButton, QtPushButton>,   make<NSHostingView, QtHostingView>,
    make<NSSearchField, QtSearchField>, make<NSTextField, QtTextField>, make<NSImageView, QtImageView>,
};

std::unique_ptr<QtView> makeWidget(NSView& view, ViewClient& client) {
  for (const Maker maker : kMakers) {
    if (auto widget = maker(view, client)) return widget;
  }
  return std::make_unique<QtView>(view, client);
}

}  // namespace

// A tree may be replaced from inside an event of one of its own widgets.
void ViewTree::clear() {
  for (QObject* child : container_.children()) {
    if (auto* widget = qobject_cast<QWidget*>(child)) {
      widget->hide();
      widget->deleteLater();
    }
  }
  widgets_.clear();
}

void ViewTree::build(NSView* root) {
  clear();
  if (root) buildIn(container_, *root);
  refreshAll();
}

void ViewTree::add(const NSView& view, std::unique_ptr<QtView> widget) {
  QtView* added = widget.release();
  added->setParent(&container_);
  widgets_.emplace(&view, added);
  added->refresh();
}

void ViewTree::buildIn(QWidget& parent, NSView& view) {
  QtView* widget = makeWidget(view, client_).release();
  widget->setParent(&parent);
  widgets_.emplace(&view, widget);
  for (const auto& subview : view.subviews()) buildIn(*widget, *subview);
}

QtView* ViewTree::find(const NSView* view) const {
  const auto found = widgets_.find(view);
  return found == widgets_.end() ? nullptr : found->second;
}

void ViewTree::refreshAll() {
  for (const auto& [view, widget] : widgets_) widget->refresh();
}

}  // namespace vistrel::widgets
