#pragma once

#include <QColor>
#include <QImage>
#include <QWidget>
#include <memory>
#include <optional>

#include "avfoundation/AVCaptureVideoPreviewLayer.h"
#include "linux/camera/GlassSource.h"
#include "qt/GlassLayout.h"

namespace vistrel::qt {

/// The live picture: paints the newest frame of a layer's camera straight into the window's backing store, at
/// the size on screen. A neutral surface while there is no picture; no work at all while it is hidden.
class Glass final : public QWidget {
 public:
  explicit Glass(QWidget* parent);
  ~Glass() override;

  void setLayer(std::shared_ptr<AVCaptureVideoPreviewLayer> layer);
  void setNeutralColour(const QColor& colour);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  /// Where the picture lies: in the glass, and in the backing store; both in physical pixels.
  struct Place {
    PixelRect glass;
    PixelRect picture;
  };
  [[nodiscard]] capture::GlassSource* source() const;
  [[nodiscard]] Place place() const;
  [[nodiscard]] QRect inPoints(const PixelRect& rect) const;
  void attach();
  void detach();
  void pictureChanged();
  void tellSize(const Place& place);
  bool paintPicture(const Place& place, const QRegion& region);
  bool paintStraight(const PixelRect& target);
  bool paintByImage(const Place& place);
  bool paintInto(QImage& image, const PixelRect& target);
  void paintAround(const QRect& picture, const QRegion& region);

  std::shared_ptr<AVCaptureVideoPreviewLayer> layer_;
  QColor neutral_;
  QImage spare_;
  PixelSize toldSize_;
  PixelRect paintedPicture_;
  // The source may outlive the glass, with the glass's handler in it.
  std::shared_ptr<bool> isAttached_;
};

}  // namespace vistrel::qt
