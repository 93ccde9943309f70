#pragma once

#include <QColor>
#include <QPalette>

#include "appkit/NSAppearance.h"

namespace vistrel::qt {

/// How far colors that lie side by side are apart.
enum class Contrast { Usual, High };

/// The colors of the program's windows and menus on a light desktop and on a dark one.
[[nodiscard]] QPalette paletteFor(bool isDark, Contrast contrast);
/// With the contrast that the user wants now.
[[nodiscard]] QPalette paletteFor(const NSAppearance& appearance);

/// The surface of the glass while there is no picture.
[[nodiscard]] QColor neutralGlass(const NSAppearance& appearance);

/// The line around a popover and its tip.
[[nodiscard]] QColor chromeLine(const NSAppearance& appearance);

}  // namespace vistrel::qt
