#include "linux/session/FreeArea.h"

#include <algorithm>

namespace vistrel::session {

QMargins panelMargins(const QRect& screen, const std::vector<x11::Strut>& struts) {
  using Edge = x11::Strut::Edge;
  QMargins margins;
  for (const auto& strut : struts) {
    const QRect part = screen & QRect(strut.x, strut.y, strut.width, strut.height);
    const bool isUpright = strut.edge == Edge::Left || strut.edge == Edge::Right;
    if (part.isEmpty()) continue;
    if (isUpright ? part.width() == screen.width() : part.height() == screen.height()) continue;
    QMargins own;
    if (strut.edge == Edge::Left) own.setLeft(part.width());
    if (strut.edge == Edge::Right) own.setRight(part.width());
    if (strut.edge == Edge::Top) own.setTop(part.height());
    if (strut.edge == Edge::Bottom) own.setBottom(part.height());
    margins = margins | own;
  }
  return margins;
}

}  // namespace vistrel::session
