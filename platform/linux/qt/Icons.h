#pragma once

#include <QColor>
#include <QPixmap>
#include <QSize>

#include "appkit/NSImage.h"

namespace vistrel::qt {

/// The picture drawn as large as fits into `size` points at `scale` physical pixels a point; a template in
/// `colour`. Empty when the file cannot be read.
[[nodiscard]] QPixmap drawn(const NSImage& image, QSize size, double scale, const QColor& colour);

}  // namespace vistrel::qt
