#pragma once

#include <QColor>
#include <QImage>
#include <QPointer>
#include <QWidget>
#include <QWindow>
#include <memory>
#include <vector>

#include "avfoundation/AVCaptureVideoPreviewLayer.h"
#include "linux/camera/GlassSource.h"
#include "linux/widgets/GlassLayout.h"
#include "linux/x11/SharedPicture.h"

namespace vistrel::widgets {

/// The live picture: paints the newest frame of a layer's camera at the size on screen. The first one goes
/// into the window's backing store; the next ones go past Qt to the server, with what lies over the picture
/// painted into them, while its place stays the same. A neutral surface while there is no picture; no work at
/// all while it is hidden.
class Glass final : public QWidget {
 public:
  explicit Glass(QWidget* parent);
  ~Glass() override;

  void setLayer(std::shared_ptr<AVCaptureVideoPreviewLayer> layer);
  /// The layer shows another part of the picture, or another way round: shown at once.
  void layerDidChange();
  void setNeutralColor(const QColor& color);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  /// Where the picture lies: in the glass, and in the backing store; both in physical pixels.
  struct Place {
    PixelRect glass;
    PixelRect picture;
  };
  [[nodiscard]] Place place() const;
  [[nodiscard]] QRect inPoints(const PixelRect& rect) const;
  void attach();
  void detach();
  void pictureChanged();
  bool drawBesideQt(const Place& place);
  [[nodiscard]] std::vector<QWidget*> covers() const;
  void paintCovers(std::uint8_t* pixels, const PixelRect& target) const;
  void tellSize(const Place& place);
  bool paintPicture(const Place& place, const QRegion& region);
  bool paintStraight(const PixelRect& target);
  bool paintByImage(const Place& place);
  bool paintInto(QImage& image, const PixelRect& target);
  bool paintInto(std::uint8_t* pixels, int stride, PixelSize size);
  void paintAround(const QRect& picture, const QRegion& region);

  std::shared_ptr<AVCaptureVideoPreviewLayer> layer_;
  camera::GlassSource* source_ = nullptr;  // the layer's, null when it has none
  QColor neutral_;
  QImage spare_;
  PixelSize toldSize_;
  Rect shownPart_;
  bool isShownMirrored_ = false;
  PixelRect paintedPicture_;
  std::unique_ptr<x11::SharedPicture> shared_;
  QPointer<QWindow> watched_;
  // The source may outlive the glass, with the glass's handler in it.
  std::shared_ptr<bool> isAttached_;
};

}  // namespace vistrel::widgets
