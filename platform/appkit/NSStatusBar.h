#pragma once

#include <memory>
#include <vector>

#include "appkit/NSEvent.h"
#include "backend/StatusArea.h"

namespace vistrel {

template <class State>
class ProcessState;

class NSMenu;
class NSStatusItem;

inline constexpr double NSVariableStatusItemLength = -1;

/// The status area of the desktop, and the rules that turn what happens at the icon into events: which press
/// belongs to what, when a menu's showing begins, and that it ends once. Main thread only.
class NSStatusBar final : public backend::StatusAreaClient {
 public:
  static NSStatusBar& system();

  /// A new item; it stays in the bar until its last reference goes.
  [[nodiscard]] std::shared_ptr<NSStatusItem> statusItemWithLength(double length);

  // StatusAreaClient
  void statusIconPressed(backend::PointerButton button, std::uint64_t modifiers, Point location) override;
  void statusMenuWillOpen() override;
  void statusMenuDidClose() override;
  void statusMenuItemChosen(std::shared_ptr<NSMenuItem> item) override;

  /// The popover or the icon's menu closed because of a press at that place. Should that press turn out to be
  /// a click on the icon, it must not open the popover.
  void closedByPress(Point location);
  /// A popover is about to open: the press that closed an earlier one is forgotten.
  void popoverWillOpen();

  // From items.
  void itemDidChange(const NSStatusItem& item);
  void itemWillEnd(const NSStatusItem& item);
  void setHighlighted(const NSStatusItem& item, bool isHighlighted);
  void setToolTip(const NSStatusItem& item, const std::string& text);
  void mirrorMenu(const NSStatusItem& item, std::shared_ptr<NSMenu> menu);
  /// Shows the item's attached menu.
  void openMenu(const NSStatusItem& item);

 private:
  friend class ProcessState<NSStatusBar>;
  class PressWatch;
  NSStatusBar();
  void reset();
  void send(const std::shared_ptr<NSEvent>& press);
  void endShowing();
  [[nodiscard]] bool isPresent(const NSStatusItem& item) const { return item_ == &item; }

  const NSStatusItem* item_ = nullptr;
  std::shared_ptr<NSMenu> shownMenu_;
  std::unique_ptr<PressWatch> closingPress_;
  bool isHostOpening_ = false;
  bool isShownByHost_ = false;
};

}  // namespace vistrel
