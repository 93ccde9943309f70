#pragma once

#include <QPoint>
#include <QRect>
#include <functional>
#include <memory>

class QMenu;

namespace vistrel {
class NSMenu;
class NSMenuItem;
}  // namespace vistrel

namespace vistrel::qt {

using MenuItemChosen = std::function<void(const std::shared_ptr<NSMenuItem>&)>;

/// Fills a menu that Qt draws with a snapshot of the items from index `first` on. `chosen` is called after
/// the menu has said that it hides.
void addRows(QMenu& native, const NSMenu& menu, std::size_t first, const MenuItemChosen& chosen);

/// Where a menu of that size lies at `anchor`: under it where its screen has the room, else above it, with
/// that edge along the anchor's.
enum class MenuEdge { Left, Right };
[[nodiscard]] QPoint placeBeside(const QRect& anchor, QSize size, MenuEdge edge);

}  // namespace vistrel::qt
