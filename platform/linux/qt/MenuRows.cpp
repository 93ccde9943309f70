#include "linux/qt/MenuRows.h"

#include <QGuiApplication>
#include <QMenu>
#include <QScreen>

#include "appkit/NSMenu.h"
#include "linux/qt/MenuText.h"

namespace vistrel::qt {

namespace {

void addRow(QMenu& native, const std::shared_ptr<NSMenuItem>& item, const MenuItemChosen& chosen) {
  if (item->isSeparatorItem()) {
    native.addSeparator();
    return;
  }
  QAction* action = native.addAction(labelForQtMenu(menuRowText(item->title())));
  action->setEnabled(!item->action().empty());
  action->setCheckable(item->state() == NSControlState::On);
  action->setChecked(item->state() == NSControlState::On);
  QObject::connect(action, &QAction::triggered, &native, [chosen, item] { chosen(item); });
}

}  // namespace

void addRows(QMenu& native, const NSMenu& menu, std::size_t first, const MenuItemChosen& chosen) {
  const auto& items = menu.itemArray();
  for (std::size_t i = first; i < items.size(); ++i) addRow(native, items[i], chosen);
}

QPoint placeBeside(const QRect& anchor, QSize size, MenuEdge edge) {
  const QScreen* screen = QGuiApplication::screenAt(anchor.center());
  const bool fitsBelow = !screen || anchor.bottom() + size.height() <= screen->geometry().bottom();
  const int x = edge == MenuEdge::Left ? anchor.left() : anchor.right() + 1 - size.width();
  return {x, fitsBelow ? anchor.bottom() + 1 : anchor.top() - size.height()};
}

}  // namespace vistrel::qt
