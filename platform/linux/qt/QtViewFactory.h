#pragma once

#include <memory>

#include "qt/QtView.h"

namespace vistrel::qt {

/// Makes the native widget that fits the view's class; a plain one for a class that has none of its own.
[[nodiscard]] std::unique_ptr<QtView> makeQtView(NSView& view, QtViewClient& client);

}  // namespace vistrel::qt
