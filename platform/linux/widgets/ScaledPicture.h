#pragma once

#include <QWidget>
#include <memory>

#include "appkit/NSImage.h"

namespace vistrel::widgets {

/// A picture that gives way where the window is short of room. Nothing is drawn without an image.
class ScaledPicture final : public QWidget {
 public:
  ScaledPicture(std::shared_ptr<NSImage> image, QWidget* parent);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::shared_ptr<NSImage> image_;
};

}  // namespace vistrel::widgets
