#include "qt/Glass.h"

#include <QBackingStore>
#include <QPaintEvent>
#include <QPainter>
#include <utility>

namespace vistrel::qt {

namespace {

constexpr int kBytesPerPixel = 4;

PixelRect shifted(const PixelRect& rect, const PixelRect& by) {
  return {rect.x + by.x, rect.y + by.y, rect.size};
}

bool isEmpty(const PixelRect& rect) { return rect.size.width <= 0 || rect.size.height <= 0; }

QRect toQRect(const PixelRect& rect) { return {rect.x, rect.y, rect.size.width, rect.size.height}; }

// The pixels that the window's content is kept in, where they are plain memory of the camera's pixel format.
QImage* backingImage(const QWidget& widget) {
  const QBackingStore* store = widget.backingStore();
  QPaintDevice* device = store ? const_cast<QBackingStore*>(store)->paintDevice() : nullptr;
  if (!device || device->devType() != QInternal::Image) return nullptr;
  auto* image = static_cast<QImage*>(device);
  return image->format() == QImage::Format_RGB32 ? image : nullptr;
}

}  // namespace

Glass::Glass(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

Glass::~Glass() { detach(); }

capture::GlassSource* Glass::source() const {
  return layer_ ? dynamic_cast<capture::GlassSource*>(layer_->stream()) : nullptr;
}

void Glass::setLayer(std::shared_ptr<AVCaptureVideoPreviewLayer> layer) {
  if (layer == layer_) return;
  detach();
  layer_ = std::move(layer);
  attach();
  update();
}

void Glass::setNeutralColour(const QColor& colour) {
  if (std::exchange(neutral_, colour) != colour) update();
}

void Glass::attach() {
  auto* const from = source();
  if (!from || isAttached_) return;
  isAttached_ = std::make_shared<bool>(true);
  toldSize_ = {};
  tellSize(place());
  from->setPictureHandler([this, token = std::weak_ptr<bool>(isAttached_)] {
    if (!token.expired()) pictureChanged();
  });
}

void Glass::detach() {
  if (!std::exchange(isAttached_, nullptr)) return;
  if (auto* const from = source()) from->setPictureHandler({});
}

void Glass::tellSize(const Place& place) {
  const PixelSize size = isEmpty(place.picture) ? place.glass.size : place.picture.size;
  if (std::exchange(toldSize_, size) != size) source()->setGlassSize(size);
}

Glass::Place Glass::place() const {
  const QPoint origin = mapTo(window(), QPoint(0, 0));
  const Rect points{double(origin.x()), double(origin.y()), double(width()), double(height())};
  Place place{pixelRect(points, devicePixelRatioF()), {}};
  auto* const from = source();
  if (!from) return place;
  const bool keepsAspect = layer_->videoGravity() == AVLayerVideoGravity::ResizeAspect;
  const PixelSize picture = from->pictureSize();
  const bool hasPicture = picture.width > 0 && picture.height > 0;
  place.picture =
      keepsAspect || !hasPicture ? letterBox(place.glass.size, picture) : PixelRect{0, 0, place.glass.size};
  return place;
}

QRect Glass::inPoints(const PixelRect& rect) const {
  const double scale = devicePixelRatioF();
  const QRectF points(rect.x / scale, rect.y / scale, rect.size.width / scale, rect.size.height / scale);
  return points.toAlignedRect() & this->rect();
}

// Only the picture is drawn again, and at once: a turn of the main loop for each frame costs more than it
// brings.
void Glass::pictureChanged() {
  const PixelRect picture = place().picture;
  if (isEmpty(picture) || picture != paintedPicture_) {
    update();
  } else {
    repaint(inPoints(picture));
  }
}

void Glass::paintEvent(QPaintEvent* event) {
  const Place where = place();
  if (source()) tellSize(where);
  const bool isPainted = !isEmpty(where.picture) && paintPicture(where, event->region());
  paintedPicture_ = isPainted ? where.picture : PixelRect{};
  paintAround(isPainted ? inPoints(where.picture) : QRect(), event->region());
}

bool Glass::paintPicture(const Place& where, const QRegion& region) {
  const bool isWhole = region.rectCount() == 1 && region.boundingRect().contains(inPoints(where.picture));
  if (isWhole && paintStraight(shifted(where.picture, where.glass))) return true;
  return paintByImage(where);
}

bool Glass::paintStraight(const PixelRect& target) {
  QImage* image = backingImage(*window());
  return image && image->rect().contains(toQRect(target)) && paintInto(*image, target);
}

// A part of the picture only, over which other widgets lie, or a window whose memory cannot be reached.
bool Glass::paintByImage(const Place& where) {
  const QSize size(where.picture.size.width, where.picture.size.height);
  if (spare_.size() != size) spare_ = QImage(size, QImage::Format_RGB32);
  if (!paintInto(spare_, {0, 0, where.picture.size})) return false;
  const double scale = devicePixelRatioF();
  const PixelRect& at = where.picture;
  QPainter(this).drawImage(QRectF(at.x / scale, at.y / scale, size.width() / scale, size.height() / scale),
                           spare_);
  return true;
}

bool Glass::paintInto(QImage& image, const PixelRect& target) {
  const auto* connection = layer_->connection();
  std::uint8_t* pixels = image.bits() + static_cast<qsizetype>(target.y) * image.bytesPerLine() +
                         static_cast<qsizetype>(target.x) * kBytesPerPixel;
  return source()->paint({.pixels = pixels,
                          .stride = static_cast<int>(image.bytesPerLine()),
                          .size = target.size,
                          .isMirrored = connection && connection->isVideoMirrored()});
}

void Glass::paintAround(const QRect& picture, const QRegion& region) {
  const QRegion bars = region - picture;
  if (bars.isEmpty()) return;
  QPainter painter(this);
  for (const QRect& bar : bars) painter.fillRect(bar, neutral_);
}

void Glass::resizeEvent(QResizeEvent* /*event*/) {
  if (isAttached_) tellSize(place());
}

void Glass::showEvent(QShowEvent* /*event*/) { attach(); }

void Glass::hideEvent(QHideEvent* /*event*/) {
  detach();
  spare_ = QImage();
}

}  // namespace vistrel::qt
