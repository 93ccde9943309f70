#pragma once

#include "appkit/NSSearchField.h"
#include "linux/widgets/QtView.h"

class QAction;

namespace vistrel::widgets {

/// A line of text with a clear button. The view says whether the button is there and whether the caret is
/// seen.
class QtSearchField final : public QtView {
 public:
  QtSearchField(NSSearchField& field, ViewClient& client);
  void refresh() override;

 protected:
  [[nodiscard]] std::string accessibleHelp() const override;

 private:
  class Line;
  void pressClearButton();

  NSSearchField& field_;
  Line* line_;
  QAction* clear_;
};

}  // namespace vistrel::widgets
