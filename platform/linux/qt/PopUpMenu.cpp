#include "qt/PopUpMenu.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <utility>

#include "appkit/NSMenu.h"
#include "qt/TrayLabel.h"

namespace vistrel::qt {

namespace {

QPoint placeBeside(const QRect& anchor, QSize size) {
  const QScreen* screen = QGuiApplication::screenAt(anchor.center());
  const bool fitsBelow = !screen || anchor.bottom() + 1 + size.height() <= screen->geometry().bottom() + 1;
  return {anchor.left(), fitsBelow ? anchor.bottom() + 1 : anchor.top() - size.height()};
}

}  // namespace

PopUpMenu::PopUpMenu(const NSMenu& menu, Handlers handlers)
    : handlers_(std::move(handlers)), native_(new QMenu) {
  for (const auto& item : menu.itemArray()) addRow(item);
  QObject::connect(native_, &QMenu::aboutToHide, handlers_.didClose);
}

// The menu's own signal may be what ends it.
PopUpMenu::~PopUpMenu() {
  native_->disconnect();
  native_->close();
  native_->deleteLater();
}

void PopUpMenu::addRow(const std::shared_ptr<NSMenuItem>& item) {
  if (item->isSeparatorItem()) {
    native_->addSeparator();
    return;
  }
  QAction* action = native_->addAction(labelForQtMenu(menuRowText(item->title())));
  action->setEnabled(!item->action().empty());
  action->setCheckable(item->state() == NSControlState::On);
  action->setChecked(item->state() == NSControlState::On);
  QObject::connect(action, &QAction::triggered, native_, [chosen = handlers_.chosen, item] { chosen(item); });
}

void PopUpMenu::show(const QRect& anchor) {
  native_->popup(anchor.isEmpty() ? QCursor::pos() : placeBeside(anchor, native_->sizeHint()));
}

}  // namespace vistrel::qt
