#include "linux/tray/TrayImage.h"

#include <QIconEngine>
#include <QPainter>
#include <QPixmap>

#include "linux/qt/Icons.h"

namespace vistrel::tray {

namespace {

// The sizes, in pixels, that panels ask for on the bus.
const QList<QSize> kSizes = {{16, 16}, {22, 22}, {24, 24}, {32, 32}};
// Seen on light panels and on dark ones.
constexpr QRgb kPlate = 0x803584e4;

QPixmap onPlate(const QPixmap& picture) {
  QPixmap pixmap(picture.size());
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor::fromRgba(kPlate));
  painter.drawRoundedRect(pixmap.rect(), pixmap.width() / 5.0, pixmap.height() / 5.0);
  painter.drawPixmap(0, 0, picture);
  return pixmap;
}

// Draws the file itself: Qt's own engine for it is a plugin, which a Debian 13 need not have.
class Engine final : public QIconEngine {
 public:
  Engine(NSImage image, TrayImage::Look look) : image_(std::move(image)), look_(look) {}

  QPixmap pixmap(const QSize& size, QIcon::Mode, QIcon::State) override {
    const QPixmap plain = qt::drawn(image_, size, 1, {});
    return look_ == TrayImage::Look::Plain ? plain : onPlate(plain);
  }

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
    const double scale = painter->device()->devicePixelRatio();
    painter->drawPixmap(rect, pixmap((QSizeF(rect.size()) * scale).toSize(), mode, state));
  }

  QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override { return kSizes; }
  [[nodiscard]] QIconEngine* clone() const override { return new Engine(*this); }

 private:
  NSImage image_;
  TrayImage::Look look_;
};

}  // namespace

TrayImage::TrayImage(const std::string& path)
    : plain_(new Engine({{}, path}, Look::Plain)), highlighted_(new Engine({{}, path}, Look::Highlighted)) {}

const QIcon& TrayImage::icon(Look look) const { return look == Look::Plain ? plain_ : highlighted_; }

}  // namespace vistrel::tray
