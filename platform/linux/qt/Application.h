#pragma once

#include <QApplication>
#include <memory>

#include "base/Result.h"

namespace vistrel::qt {

/// Fails, where Qt would abort, when there is no X server.
[[nodiscard]] Result<void> findDisplay();

/// Makes the one application object, on X11 whatever the session is; the X server has to be there. The
/// arguments must outlive it.
[[nodiscard]] std::unique_ptr<QApplication> makeApplication(int& argumentCount, char** arguments);

}  // namespace vistrel::qt
