#include "linux/widgets/ViewTree.h"

#include "linux/widgets/QtViewFactory.h"

namespace vistrel::widgets {

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
  QtView* widget = makeQtView(view, client_).release();
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
