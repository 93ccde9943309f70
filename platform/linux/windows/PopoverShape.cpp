#include "linux/windows/PopoverShape.h"

#include <QPolygonF>
#include <QTransform>
#include <algorithm>

#include "appkit/ScreenGeometry.h"

namespace vistrel::windows {

namespace {

using Side = PopoverTip::Side;

constexpr int kLine = 1;
constexpr double kCornerRadius = 5;
constexpr double kPaintedCornerRadius = 2.5;  // with a larger one, and a line of 1, square corners stand out
constexpr double kTipHalfWidth = 9;

// The tip leaves room for the rounded corners, however near to a corner the icon is.
double alongEdge(double wanted, double low, double high) {
  const double room = kCornerRadius + kTipHalfWidth;
  return high - low < 2 * room ? (low + high) / 2 : std::clamp(wanted, low + room, high - room);
}

QPolygonF tipOf(const QRectF& box, Side side, QPointF at) {
  const double length = kPopoverTipLength;
  const double x = alongEdge(at.x(), box.left(), box.right());
  const double y = alongEdge(at.y(), box.top(), box.bottom());
  // Each triangle reaches into the box, so that no seam is left between them.
  switch (side) {
    case Side::Below:
      return QPolygonF({{x - kTipHalfWidth, box.top() + kLine},
                        {x, box.top() + kLine - length},
                        {x + kTipHalfWidth, box.top() + kLine}});
    case Side::Above:
      return QPolygonF({{x - kTipHalfWidth, box.bottom() - kLine},
                        {x, box.bottom() - kLine + length},
                        {x + kTipHalfWidth, box.bottom() - kLine}});
    case Side::RightOf:
      return QPolygonF({{box.left() + kLine, y - kTipHalfWidth},
                        {box.left() + kLine - length, y},
                        {box.left() + kLine, y + kTipHalfWidth}});
    case Side::LeftOf:
      return QPolygonF({{box.right() - kLine, y - kTipHalfWidth},
                        {box.right() - kLine + length, y},
                        {box.right() - kLine, y + kTipHalfWidth}});
  }
  return {};
}

}  // namespace

PopoverShape::PopoverShape(const QRectF& content, const std::optional<PopoverTip>& tip, QPointF windowOrigin,
                           Edge edge) {
  const QRectF box = content.adjusted(-kLine, -kLine, kLine, kLine);
  const double radius = edge == Edge::Cut ? kCornerRadius : kPaintedCornerRadius;
  outline_.addRoundedRect(box, radius, radius);
  if (!tip) return;
  QPainterPath triangle;
  triangle.addPolygon(tipOf(box, tip->side, QPointF(tip->location.x, tip->location.y) - windowOrigin));
  triangle.closeSubpath();
  outline_ = outline_.united(triangle);
}

QMargins PopoverShape::margins(const std::optional<PopoverTip>& tip) {
  QMargins margins(kLine, kLine, kLine, kLine);
  if (!tip) return margins;
  const int length = static_cast<int>(kPopoverTipLength);
  switch (tip->side) {
    case Side::Below:
      margins.setTop(length);
      break;
    case Side::Above:
      margins.setBottom(length);
      break;
    case Side::RightOf:
      margins.setLeft(length);
      break;
    case Side::LeftOf:
      margins.setRight(length);
      break;
  }
  return margins;
}

QRegion PopoverShape::region(double scale) const {
  const QPolygonF polygon = outline_.toFillPolygon(QTransform::fromScale(scale, scale));
  return QRegion(polygon.toPolygon());
}

}  // namespace vistrel::windows
