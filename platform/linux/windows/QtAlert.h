#pragma once

#include <memory>

#include "appkit/NSAlert.h"

class QWidget;

namespace vistrel::windows {

/// Shows the alert and returns: over `parent`, which waits for the answer, or by itself before all windows of
/// the program. The answer goes to the alert.
void showQtAlert(const std::shared_ptr<NSAlert>& alert, QWidget* parent);

}  // namespace vistrel::windows
