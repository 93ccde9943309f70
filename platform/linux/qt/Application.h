#pragma once

#include <QApplication>
#include <memory>

#include "base/Result.h"

namespace vistrel::qt {

/// Makes the one application object, on X11 whatever the session is. Fails, where Qt would abort, when there
/// is no X server. The arguments must outlive it.
[[nodiscard]] Result<std::unique_ptr<QApplication>> makeApplication(int& argumentCount, char** arguments);

}  // namespace vistrel::qt
