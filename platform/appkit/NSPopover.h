#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "appkit/NSAppearance.h"
#include "appkit/NSEvent.h"
#include "appkit/NSWindow.h"
#include "appkit/ScreenGeometry.h"
#include "backend/Windows.h"
#include "foundation/NSObject.h"

namespace vistrel {

class NSPopover;
class NSView;
class NSViewController;
class PopoverWindow;

enum class NSRectEdge { MinX = 0, MinY = 1, MaxX = 2, MaxY = 3 };
enum class NSPopoverBehavior { ApplicationDefined = 0, Transient = 1, Semitransient = 2 };

class NSPopoverDelegate {
 public:
  virtual ~NSPopoverDelegate() = default;
  /// The user drags the popover away from its anchor: may it become a window?
  virtual bool popoverShouldDetach(NSPopover& popover) = 0;
  virtual void popoverDidDetach(NSPopover& popover) = 0;
  virtual void popoverDidClose(NSPopover& /*popover*/) {}
};

/// A balloon that hangs from a view and may be torn off into a window of its own. A transient one closes at
/// any press outside it while it is attached. Here it never animates. Main thread only.
class NSPopover : public NSObject, public backend::OutsidePressClient {
 public:
  NSPopover() = default;
  /// A popover on screen is closed before it is dropped.
  ~NSPopover() override;

  static void setAnimates(bool /*animates*/) {}
  [[nodiscard]] const std::optional<NSAppearance>& appearance() const { return appearance_; }
  void setAppearance(const NSAppearance& appearance);
  /// What window lists and screen readers call it.
  void setTitle(std::string title) { title_ = std::move(title); }
  void setContentSize(Size size) { contentSize_ = size; }
  [[nodiscard]] NSPopoverBehavior behavior() const { return behavior_; }
  void setBehavior(NSPopoverBehavior behavior) { behavior_ = behavior; }
  [[nodiscard]] NSViewController* contentViewController() const { return controller_.get(); }
  /// On screen, the earlier controller's view disappears and the new one's appears.
  void setContentViewController(std::shared_ptr<NSViewController> controller);
  [[nodiscard]] NSPopoverDelegate* delegate() const { return delegate_; }
  void setDelegate(NSPopoverDelegate* delegate) { delegate_ = delegate; }

  /// True from `show` to the close, torn off or not.
  [[nodiscard]] bool isShown() const { return isShown_; }
  [[nodiscard]] bool isDetached() const { return isDetached_; }
  /// The edge is a wish: a popover opens on the side of its anchor that points away from the panel.
  void showRelativeToRect(const Rect& rect, NSView& view, NSRectEdge preferredEdge);
  /// Closes at once: when it returns, the popover is not shown and its view has disappeared.
  virtual void performClose(NSObject* sender);
  /// The window under it, shown or not; null before the first showing.
  [[nodiscard]] NSWindow* window() const;

  // backend::OutsidePressClient
  void pressBegan() override {}
  void pressedOutside(Point location, Press press) override;

  // From the popover's window.
  void tearOff();

 private:
  [[nodiscard]] PopoverPlace placeAt(const std::optional<Rect>& anchor) const;
  void makeWindow();
  void appear();
  void watchPresses();
  void watchScreen();
  void stopWatching();
  void endHighlight();

  std::optional<NSAppearance> appearance_;
  std::string title_;
  Size contentSize_;
  NSPopoverBehavior behavior_ = NSPopoverBehavior::ApplicationDefined;
  std::shared_ptr<NSViewController> controller_;
  NSPopoverDelegate* delegate_ = nullptr;
  std::weak_ptr<NSView> anchor_;
  std::shared_ptr<PopoverWindow> window_;
  std::shared_ptr<NSEvent::Monitor> ownPresses_;
  std::unique_ptr<backend::Timer> arrival_;  // while the window is on its way to the screen
  bool isShown_ = false;
  bool isDetached_ = false;
};

}  // namespace vistrel
