#include "linux/tray/TrayImage.h"

#include <QPainter>
#include <QPixmap>

namespace vistrel::tray {

namespace {

// The sizes, in pixels, that panels ask for.
constexpr int kSizes[] = {16, 22, 24, 32, 48, 64};
// Seen on light panels and on dark ones.
constexpr QRgb kPlate = 0x803584e4;

QPixmap onPlate(const QIcon& icon, int size) {
  QPixmap pixmap(size, size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor::fromRgba(kPlate));
  painter.drawRoundedRect(pixmap.rect(), size / 5.0, size / 5.0);
  painter.drawPixmap(0, 0, icon.pixmap(QSize(size, size), 1.0));
  return pixmap;
}

}  // namespace

TrayImage::TrayImage(const std::string& path) : plain_(QString::fromStdString(path)) {}

const QIcon& TrayImage::icon(Look look) {
  if (look == Look::Plain) return plain_;
  if (highlighted_.isNull()) {
    for (const int size : kSizes) highlighted_.addPixmap(onPlate(plain_, size));
  }
  return highlighted_;
}

}  // namespace vistrel::tray
