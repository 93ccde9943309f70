#pragma once

#include <QPoint>
#include <QRect>

#include "base/Geometry.h"

namespace vistrel::qt {

[[nodiscard]] inline Point fromQt(QPoint point) { return {double(point.x()), double(point.y())}; }

[[nodiscard]] inline Rect fromQt(const QRect& rect) {
  return {double(rect.x()), double(rect.y()), double(rect.width()), double(rect.height())};
}

[[nodiscard]] inline QRect toQt(const Rect& rect) {
  return QRectF(rect.x, rect.y, rect.width, rect.height).toRect();
}

}  // namespace vistrel::qt
