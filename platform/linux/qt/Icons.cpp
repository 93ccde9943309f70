#include "linux/qt/Icons.h"

#include <QPainter>
#include <QSvgRenderer>
#include <utility>

namespace vistrel::qt {

QPixmap drawn(const NSImage& image, QSize size, double scale, const QColor& color) {
  QSvgRenderer renderer(QString::fromStdString(image.path()));
  if (!renderer.isValid()) return {};
  renderer.setAspectRatioMode(Qt::KeepAspectRatio);
  QPixmap pixmap((QSizeF(size) * scale).toSize());
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  renderer.render(&painter);
  if (image.isTemplate()) {
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), color);
  }
  painter.end();
  pixmap.setDevicePixelRatio(scale);
  return pixmap;
}

QIcon applicationIcon() {
  const auto image = NSImage::imageNamed("AppIconPreview");
  QIcon icon;
  if (!image) return icon;
  for (const int size : {16, 32, 48, 64}) icon.addPixmap(drawn(*image, {size, size}, 1, {}));
  return icon;
}

const QPixmap& DrawnIcon::pixmap(const NSImage& image, QSize size, double scale, const QColor& color) {
  const Key wanted{image.path(), size, scale, color};
  if (std::exchange(key_, wanted) != wanted) pixmap_ = drawn(image, size, scale, color);
  return pixmap_;
}

}  // namespace vistrel::qt
