#include "qt/QtPopUpMenu.h"

#include <QGuiApplication>
#include <QScreen>
#include <utility>

#include "qt/TrayLabel.h"

namespace vistrel::qt {

QtPopUpMenu::QtPopUpMenu(QWidget& opener, std::shared_ptr<NSMenu> menu, std::size_t first, Chosen chosen)
    : QMenu(&opener), menu_(std::move(menu)), chosen_(std::move(chosen)) {
  setPalette(opener.palette());
  // The press that closes the menu does nothing else, or the button under it would open the menu again.
  setAttribute(Qt::WA_NoMouseReplay);
  setAccessibleName(QString::fromStdString(menu_->title()));
  const auto& items = menu_->itemArray();
  for (std::size_t i = first; i < items.size(); ++i) addItem(items[i]);
  connect(this, &QMenu::aboutToHide, this, &QObject::deleteLater);
}

void QtPopUpMenu::addItem(const std::shared_ptr<NSMenuItem>& item) {
  if (item->isSeparatorItem()) {
    addSeparator();
    return;
  }
  QAction* action = addAction(labelForQtMenu(menuRowText(item->title())));
  action->setCheckable(item->state() == NSControlState::On);
  action->setChecked(item->state() == NSControlState::On);
  connect(action, &QAction::triggered, this, [this, item] {
    QMetaObject::invokeMethod(
        qGuiApp, [chosen = chosen_, item] { chosen(item); }, Qt::QueuedConnection);
  });
}

// Under the anchor where there is room, else above it; its right edge along the anchor's.
QPoint QtPopUpMenu::placeBeside(const QRect& anchor) const {
  const QSize size = sizeHint();
  const QScreen* screen = QGuiApplication::screenAt(anchor.center());
  const QRect room = (screen ? screen : QGuiApplication::primaryScreen())->availableGeometry();
  const bool fitsBelow = anchor.bottom() + size.height() <= room.bottom();
  return {anchor.right() + 1 - size.width(), fitsBelow ? anchor.bottom() + 1 : anchor.top() - size.height()};
}

void QtPopUpMenu::popUpBeside(const QRect& anchor, OpenedBy opener) {
  popup(placeBeside(anchor));
  if (opener == OpenedBy::Keyboard && !actions().isEmpty()) setActiveAction(actions().constFirst());
}

}  // namespace vistrel::qt
