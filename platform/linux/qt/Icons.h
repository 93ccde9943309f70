#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QSize>
#include <string>

#include "appkit/NSImage.h"

namespace vistrel::qt {

/// The picture drawn as large as fits into `size` points at `scale` physical pixels a point; a template in
/// `color`. Empty when the file cannot be read.
[[nodiscard]] QPixmap drawn(const NSImage& image, QSize size, double scale, const QColor& color);

/// The program's own icon.
[[nodiscard]] QIcon applicationIcon();

/// The same for what is painted again and again: drawn once, until one of the arguments is another.
class DrawnIcon {
 public:
  [[nodiscard]] const QPixmap& pixmap(const NSImage& image, QSize size, double scale, const QColor& color);

 private:
  struct Key {
    std::string path;
    QSize size;
    double scale = 0;
    QColor color;
    bool operator==(const Key&) const = default;
  };

  Key key_;
  QPixmap pixmap_;
};

}  // namespace vistrel::qt
