#pragma once

#include <QMargins>
#include <QPainterPath>
#include <QRectF>
#include <QRegion>
#include <optional>

#include "appkit/NSWindow.h"

namespace vistrel::windows {

/// The outline of a popover: its content in a thin line, with a tip on the side of its icon. All in points,
/// in the coordinates of the native window.
class PopoverShape {
 public:
  /// Whether the window is cut along the outline, its content with it, or the outline is painted around the
  /// content, whose corners it leaves as they are.
  enum class Edge { Cut, Painted };
  /// No tip: the shape of a torn-off window.
  PopoverShape(const QRectF& content, const std::optional<PopoverTip>& tip, QPointF windowOrigin, Edge edge);

  /// Room that a native window needs around its content.
  [[nodiscard]] static QMargins margins(const std::optional<PopoverTip>& tip);

  [[nodiscard]] const QPainterPath& outline() const { return outline_; }
  /// The outline in physical pixels.
  [[nodiscard]] QRegion region(double scale) const;

 private:
  QPainterPath outline_;
};

}  // namespace vistrel::windows
