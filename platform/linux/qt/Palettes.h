#pragma once

#include <QPalette>

namespace vistrel::qt {

/// The colours of the program's windows and menus on a light desktop and on a dark one.
[[nodiscard]] QPalette lightPalette();
[[nodiscard]] QPalette darkPalette();

}  // namespace vistrel::qt
