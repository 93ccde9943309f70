#pragma once

#include <memory>

#include "linux/widgets/QtView.h"

namespace vistrel::widgets {

/// Makes the native widget that fits the view's class; a plain one for a class that has none of its own.
[[nodiscard]] std::unique_ptr<QtView> makeQtView(NSView& view, ViewClient& client);

}  // namespace vistrel::widgets
