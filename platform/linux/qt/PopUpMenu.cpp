#include "linux/qt/PopUpMenu.h"

#include <QCursor>
#include <utility>

namespace vistrel::qt {

PopUpMenu::PopUpMenu(const NSMenu& menu, Handlers handlers)
    : handlers_(std::move(handlers)), native_(new QMenu) {
  addRows(*native_, menu, 0, handlers_.chosen);
  QObject::connect(native_, &QMenu::aboutToHide, handlers_.didClose);
}

// The menu's own signal may be what ends it.
PopUpMenu::~PopUpMenu() {
  native_->disconnect();
  native_->close();
  native_->deleteLater();
}

void PopUpMenu::show(const QRect& anchor) {
  native_->popup(anchor.isEmpty() ? QCursor::pos()
                                  : placeBeside(anchor, native_->sizeHint(), MenuEdge::Left));
}

}  // namespace vistrel::qt
