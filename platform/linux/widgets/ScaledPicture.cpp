#include "linux/widgets/ScaledPicture.h"

#include <QPainter>
#include <algorithm>
#include <utility>

#include "linux/qt/Icons.h"

namespace vistrel::widgets {

namespace {

constexpr int kLargest = 96;
constexpr int kSmallest = 32;

}  // namespace

ScaledPicture::ScaledPicture(std::shared_ptr<NSImage> image, QWidget* parent)
    : QWidget(parent), image_(std::move(image)) {
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
  setMaximumHeight(kLargest);
}

QSize ScaledPicture::sizeHint() const { return {kLargest, kLargest}; }

QSize ScaledPicture::minimumSizeHint() const { return {kSmallest, kSmallest}; }

void ScaledPicture::paintEvent(QPaintEvent* /*event*/) {
  if (!image_) return;
  const int side = std::min(width(), height());
  const QPointF at((width() - side) / 2.0, (height() - side) / 2.0);
  const QColor color = palette().color(QPalette::WindowText);
  QPainter(this).drawPixmap(at, qt::drawn(*image_, {side, side}, devicePixelRatioF(), color));
}

}  // namespace vistrel::widgets
