#include "linux/widgets/LinkButton.h"

#include <QPainter>

namespace vistrel::widgets {

namespace {
constexpr int kMargin = 3;
}

LinkButton::LinkButton(const QString& title, QWidget* parent) : QAbstractButton(parent) {
  setText(title);
  setCursor(Qt::PointingHandCursor);
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_Hover);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize LinkButton::sizeHint() const {
  return {fontMetrics().horizontalAdvance(text()) + 2 * kMargin, fontMetrics().height() + 2 * kMargin};
}

void LinkButton::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  QFont underlined = font();
  underlined.setUnderline(underMouse() || hasFocus());
  painter.setFont(underlined);
  painter.setPen(palette().color(isDown() ? QPalette::LinkVisited : QPalette::Link));
  painter.drawText(rect(), Qt::AlignCenter, text());
  if (!hasFocus()) return;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(palette().color(QPalette::Highlight), 1.5));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), kMargin, kMargin);
}

}  // namespace vistrel::widgets
