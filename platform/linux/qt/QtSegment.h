#pragma once

#include <QPainterPath>
#include <QRadioButton>
#include <memory>

#include "appkit/NSImage.h"

namespace vistrel::qt {

/// One part of a segmented control: a radio button in all but its looks.
class QtSegment final : public QRadioButton {
 public:
  enum class Place { Only, First, Middle, Last };

  /// Shows the image, or the button's text without one.
  QtSegment(std::shared_ptr<NSImage> image, Place place, QWidget* parent);
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  [[nodiscard]] bool hitButton(const QPoint& position) const override { return rect().contains(position); }

 private:
  [[nodiscard]] QPainterPath outline() const;
  void paintFace(QPainter& painter) const;

  std::shared_ptr<NSImage> image_;
  Place place_;
};

}  // namespace vistrel::qt
