#pragma once

#include <QWidget>
#include <map>
#include <memory>

#include "linux/widgets/QtView.h"

namespace vistrel::widgets {

/// The native widgets of a window's view tree, inside one container.
class ViewTree {
 public:
  ViewTree(QWidget& container, ViewClient& client) : container_(container), client_(client) {}

  /// Builds the widgets of `root` and all below it, in place of earlier ones. Null: no widgets.
  void build(NSView* root);
  /// Adds the widget of a view that is outside the tree, above all others.
  void add(const NSView& view, std::unique_ptr<QtView> widget);
  /// The widget of the view; null when it is none of the tree.
  [[nodiscard]] QtView* find(const NSView* view) const;
  void refreshAll();

 private:
  void clear();
  void buildIn(QWidget& parent, NSView& view);

  QWidget& container_;
  ViewClient& client_;
  std::map<const NSView*, QtView*> widgets_;
};

}  // namespace vistrel::widgets
