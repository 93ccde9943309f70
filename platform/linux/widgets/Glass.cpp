#include "linux/widgets/Glass.h"

#include <QBackingStore>
#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>
#include <cmath>
#include <utility>

#include "linux/qt/AccessibleRole.h"
#include "linux/qt/X11Toolkit.h"

namespace vistrel::widgets {

namespace {

constexpr int kBytesPerPixel = 4;

PixelRect shifted(const PixelRect& rect, const PixelRect& by) {
  return {rect.x + by.x, rect.y + by.y, rect.size};
}

bool isEmpty(const PixelRect& rect) { return rect.size.width <= 0 || rect.size.height <= 0; }

QRect toQRect(const PixelRect& rect) { return {rect.x, rect.y, rect.size.width, rect.size.height}; }

// The pixels that the window's content is kept in, where they are plain memory of the camera's pixel format.
// A picture is opaque, so that it does not matter whether the window is.
QImage* backingImage(const QWidget& widget) {
  const QBackingStore* store = widget.backingStore();
  QPaintDevice* device = store ? const_cast<QBackingStore*>(store)->paintDevice() : nullptr;
  if (!device || device->devType() != QInternal::Image) return nullptr;
  auto* image = static_cast<QImage*>(device);
  const auto format = image->format();
  return format == QImage::Format_RGB32 || format == QImage::Format_ARGB32_Premultiplied ? image : nullptr;
}

}  // namespace

Glass::Glass(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAttribute(Qt::WA_TransparentForMouseEvents);
  qt::setAccessibleRole(*this, QAccessible::Graphic);
}

Glass::~Glass() { detach(); }

void Glass::setLayer(std::shared_ptr<AVCaptureVideoPreviewLayer> layer) {
  if (layer == layer_) return;
  detach();
  layer_ = std::move(layer);
  source_ = layer_ ? dynamic_cast<camera::GlassSource*>(layer_->stream()) : nullptr;
  attach();
  update();
}

void Glass::layerDidChange() {
  if (!layer_ || !isAttached_) return;
  if (shownPart_ == layer_->contentsRect() && isShownMirrored_ == layer_->isMirrored()) return;
  const Place where = place();
  tellSize(where);
  pictureChanged();
}

void Glass::setNeutralColor(const QColor& color) {
  if (std::exchange(neutral_, color) != color) update();
}

void Glass::attach() {
  if (!source_ || isAttached_) return;
  isAttached_ = std::make_shared<bool>(true);
  toldSize_ = {};
  tellSize(place());
  source_->setPictureHandler([this, token = std::weak_ptr<bool>(isAttached_)] {
    if (!token.expired()) pictureChanged();
  });
}

void Glass::detach() {
  if (!std::exchange(isAttached_, nullptr)) return;
  source_->setPictureHandler({});
}

void Glass::tellSize(const Place& place) {
  const PixelSize seen = isEmpty(place.picture) ? place.glass.size : place.picture.size;
  const Rect& part = layer_->contentsRect();
  const PixelSize size{static_cast<int>(std::lround(seen.width / part.width)),
                       static_cast<int>(std::lround(seen.height / part.height))};
  if (std::exchange(toldSize_, size) != size) source_->setGlassSize(size);
}

Glass::Place Glass::place() const {
  const QPoint origin = mapTo(window(), QPoint(0, 0));
  const Rect points{double(origin.x()), double(origin.y()), double(width()), double(height())};
  Place place{pixelRect(points, devicePixelRatioF()), {}};
  if (!source_) return place;
  const bool keepsAspect = layer_->videoGravity() == AVLayerVideoGravity::ResizeAspect;
  const PixelSize picture = source_->pictureSize();
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
  const Place where = place();
  if (isEmpty(where.picture) || where.picture != paintedPicture_) {
    update();
  } else if (!drawBesideQt(where)) {
    repaint(inPoints(where.picture));
  }
}

// Qt would wait for the server before each frame, by way of a thread that has to wake for the answer.
bool Glass::drawBesideQt(const Place& where) {
  QWindow* handle = window()->windowHandle();
  if (!handle || !handle->isExposed()) return false;
  if (watched_ != handle) {
    watched_ = handle;
    handle->installEventFilter(this);
    shared_ = qt::toolkitConnection() ? x11::SharedPicture::create(static_cast<xcb_window_t>(handle->winId()))
                                      : nullptr;
  }
  const PixelRect target = shifted(where.picture, where.glass);
  std::uint8_t* pixels = shared_ ? shared_->pixels(target.size) : nullptr;
  if (!pixels) shared_.reset();  // it will not be otherwise with the next frame
  if (!pixels || !paintInto(pixels, target.size.width * kBytesPerPixel, target.size)) return false;
  paintCovers(pixels, target);
  shared_->draw(target.x, target.y);
  return true;
}

// What Qt keeps of the window is older than what is on the glass.
bool Glass::eventFilter(QObject* object, QEvent* event) {
  if (event->type() == QEvent::Expose) update();
  return QWidget::eventFilter(object, event);
}

// Widgets that come later among their siblings lie above.
std::vector<QWidget*> Glass::covers() const {
  std::vector<QWidget*> result;
  QRect area = geometry();
  for (const QWidget* widget = this; !widget->isWindow(); widget = widget->parentWidget()) {
    bool isAbove = false;
    for (QObject* child : widget->parentWidget()->children()) {
      auto* sibling = qobject_cast<QWidget*>(child);
      const bool isSeen = isAbove && sibling && sibling->isVisible() && !sibling->isWindow();
      if (isSeen && sibling->geometry().intersects(area)) result.push_back(sibling);
      isAbove = isAbove || child == widget;
    }
    area.translate(widget->parentWidget()->pos());
  }
  return result;
}

// As Qt would paint them over a picture of its own.
void Glass::paintCovers(std::uint8_t* pixels, const PixelRect& target) const {
  const auto above = covers();
  if (above.empty()) return;
  const double scale = devicePixelRatioF();
  const PixelSize size = target.size;
  const qsizetype stride = qsizetype{kBytesPerPixel} * size.width;
  QImage picture(pixels, size.width, size.height, stride, QImage::Format_RGB32);
  picture.setDevicePixelRatio(scale);
  QPainter painter(&picture);
  painter.translate(-target.x / scale, -target.y / scale);
  for (QWidget* cover : above) {
    cover->render(&painter, cover->mapTo(window(), QPoint(0, 0)), QRegion(), QWidget::DrawChildren);
  }
}

void Glass::paintEvent(QPaintEvent* event) {
  const Place where = place();
  if (source_) tellSize(where);
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
  std::uint8_t* pixels = image.bits() + static_cast<qsizetype>(target.y) * image.bytesPerLine() +
                         static_cast<qsizetype>(target.x) * kBytesPerPixel;
  return paintInto(pixels, static_cast<int>(image.bytesPerLine()), target.size);
}

bool Glass::paintInto(std::uint8_t* pixels, int stride, PixelSize size) {
  shownPart_ = layer_->contentsRect();
  isShownMirrored_ = layer_->isMirrored();
  return source_->paint(
      {.pixels = pixels, .stride = stride, .size = size, .isMirrored = isShownMirrored_, .part = shownPart_});
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
  shared_.reset();
  if (watched_) watched_->removeEventFilter(this);
  watched_ = nullptr;
}

}  // namespace vistrel::widgets
