#pragma once

#include <memory>
#include <string>

#include "appkit/NSResponder.h"

namespace vistrel {

class NSView;

/// Owner of a view tree that is loaded on first use.
class NSViewController : public NSResponder {
 public:
  NSViewController() = default;
  /// The view may be kept by others; nothing in it leads here any more.
  ~NSViewController() override;

  /// The view; loaded, with `viewDidLoad` run, on the first call.
  [[nodiscard]] NSView& view();
  /// The tree that a storyboard made. Set before the first use of `view`.
  void setView(std::shared_ptr<NSView> view);

  /// Called by the storyboard for each outlet of its layout, before the view is loaded.
  virtual void connectOutlet(const std::string& name, const std::shared_ptr<NSView>& view);

  virtual void viewDidLoad() {}
  virtual void viewWillAppear() {}
  virtual void viewDidDisappear() {}

  /// The window, while the view is in one.
  [[nodiscard]] NSResponder* nextResponder() const override;

 private:
  std::shared_ptr<NSView> view_;
  bool isLoaded_ = false;
};

}  // namespace vistrel
