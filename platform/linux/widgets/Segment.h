#pragma once

#include <QAbstractButton>
#include <QPainterPath>
#include <memory>

#include "appkit/NSImage.h"

namespace vistrel::widgets {

/// One part of a segmented control: checked in turn with its neighbours, and a radio button to screen
/// readers.
class Segment final : public QAbstractButton {
 public:
  enum class Place { Only, First, Middle, Last };

  /// Shows the image, or the button's text without one.
  Segment(std::shared_ptr<NSImage> image, Place place, QWidget* parent);
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] QPainterPath outline() const;
  void paintFace(QPainter& painter) const;

  std::shared_ptr<NSImage> image_;
  Place place_;
};

}  // namespace vistrel::widgets
