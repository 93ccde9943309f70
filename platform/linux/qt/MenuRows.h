#pragma once

#include <QPoint>
#include <QRect>
#include <QString>
#include <functional>
#include <memory>
#include <string>

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

/// Has `native` show every separator, one that it begins with too, as a menu without a camera does.
void keepSeparators(QMenu& native);

/// Where a menu of that size lies at `anchor`: under it where its screen has the room, else above it, with
/// that edge along the anchor's.
enum class MenuEdge { Left, Right };
[[nodiscard]] QPoint placeBeside(const QRect& anchor, QSize size, MenuEdge edge);

/// The title of a menu item as a row shows it: as text, on one line, elided in the middle when it is too
/// long. A title without anything to see says "(no name)": hosts put words of their own in the place of
/// nothing, and a row has to be seen, and read aloud, to be chosen.
[[nodiscard]] QString menuRowText(const std::string& title);

/// That text as a label for Qt's own menus, where "&" would mark a letter.
[[nodiscard]] QString labelForQtMenu(const QString& text);

/// That text as a label for a menu that goes over D-Bus: Qt turns its first "&" into the "_" that marks a
/// letter there, and leaves all others and every "_" as they are.
[[nodiscard]] QString labelForBusMenu(const QString& text);

}  // namespace vistrel::qt
