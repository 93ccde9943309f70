#include "linux/tray/IconMenu.h"

#include <QCursor>
#include <utility>

namespace vistrel::tray {

IconMenu::IconMenu(const NSMenu& menu, Handlers handlers)
    : handlers_(std::move(handlers)), native_(new QMenu) {
  qt::addRows(*native_, menu, 0, handlers_.chosen);
  QObject::connect(native_, &QMenu::aboutToHide, handlers_.didClose);
}

// The menu's own signal may be what ends it.
IconMenu::~IconMenu() {
  native_->disconnect();
  native_->close();
  native_->deleteLater();
}

void IconMenu::show(const QRect& anchor) {
  native_->popup(anchor.isEmpty() ? QCursor::pos()
                                  : qt::placeBeside(anchor, native_->sizeHint(), qt::MenuEdge::Left));
}

}  // namespace vistrel::tray
