#include "linux/widgets/Segment.h"

#include <QPainter>
#include <algorithm>
#include <utility>

#include "linux/qt/Icons.h"

namespace vistrel::widgets {

namespace {

constexpr double kRadius = 5;
constexpr int kFaceMargin = 4;
constexpr int kFaceHeight = 18;

QColor mixed(const QColor& a, const QColor& b, double share) {
  const auto mix = [share](int from, int to) { return from + int((to - from) * share); };
  return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

}  // namespace

Segment::Segment(std::shared_ptr<NSImage> image, Place place, QWidget* parent)
    : QAbstractButton(parent), image_(std::move(image)), place_(place) {
  setCheckable(true);
  setAutoExclusive(true);
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_Hover);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize Segment::sizeHint() const {
  const int face = std::max(kFaceHeight, fontMetrics().height());
  return {std::max(face, fontMetrics().horizontalAdvance(text())) + 4 * kFaceMargin, face + 2 * kFaceMargin};
}

// Round at the ends of the row, straight where segments meet; neighbours share a line.
QPainterPath Segment::outline() const {
  const bool isMirrored = layoutDirection() == Qt::RightToLeft;
  const auto leftEnd = isMirrored ? Place::Last : Place::First;
  const auto rightEnd = isMirrored ? Place::First : Place::Last;
  QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
  const bool isRoundLeft = place_ == leftEnd || place_ == Place::Only;
  const bool isRoundRight = place_ == rightEnd || place_ == Place::Only;
  if (!isRoundRight) box.setRight(box.right() + 1);
  QPainterPath round;
  round.addRoundedRect(box, kRadius, kRadius);
  QPainterPath straight;
  if (!isRoundLeft) straight.addRect(QRectF(box.topLeft(), QSizeF(box.width() / 2, box.height())));
  if (!isRoundRight) straight.addRect(box.adjusted(box.width() / 2, 0, 0, 0));
  return round.united(straight).simplified();
}

void Segment::paintEvent(QPaintEvent* /*event*/) {
  const QPalette& colors = palette();
  const QColor base = colors.color(QPalette::Button);
  const QColor text = colors.color(QPalette::ButtonText);
  QColor fill = isChecked() ? colors.color(QPalette::Highlight) : base;
  if (isDown()) {
    fill = mixed(fill, text, 0.2);
  } else if (underMouse() && !isChecked()) {
    fill = mixed(fill, text, 0.07);
  }
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(mixed(base, text, 0.35), 1));
  painter.setBrush(fill);
  painter.drawPath(outline());
  paintFace(painter);
  if (!hasFocus()) return;
  const QColor ring = colors.color(isChecked() ? QPalette::HighlightedText : QPalette::Highlight);
  painter.setPen(QPen(ring, 1.5));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(QRectF(rect()).adjusted(3, 3, -3, -3), kRadius - 2, kRadius - 2);
}

void Segment::paintFace(QPainter& painter) const {
  const QColor color = palette().color(isChecked() ? QPalette::HighlightedText : QPalette::ButtonText);
  painter.setPen(color);
  if (!image_) {
    painter.drawText(rect(), Qt::AlignCenter, text());
    return;
  }
  const int side = height() - 2 * kFaceMargin;
  const QPointF at((width() - side) / 2.0, kFaceMargin);
  painter.drawPixmap(at, qt::drawn(*image_, {side, side}, devicePixelRatioF(), color));
}

}  // namespace vistrel::widgets
