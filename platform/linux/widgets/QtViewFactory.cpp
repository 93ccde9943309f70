#include "linux/widgets/QtViewFactory.h"

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

}  // namespace

std::unique_ptr<QtView> makeQtView(NSView& view, ViewClient& client) {
  for (const Maker maker : kMakers) {
    if (auto widget = maker(view, client)) return widget;
  }
  return std::make_unique<QtView>(view, client);
}

}  // namespace vistrel::widgets
