#include "linux/windows/ButtonMenu.h"

#include <QGuiApplication>
#include <algorithm>
#include <memory>

#include "appkit/NSMenu.h"
#include "appkit/NSPopUpButton.h"
#include "linux/qt/MenuRows.h"

namespace vistrel::windows {

ButtonMenu::ButtonMenu(QAbstractButton& face, NSPopUpButton& button) : QMenu(&face), face_(face) {
  setPalette(face.palette());
  // The press that closes the menu does nothing else, or the button under it would open the menu again.
  setAttribute(Qt::WA_NoMouseReplay);
  setAccessibleName(QString::fromStdString(button.menu()->title()));
  const auto kept = std::static_pointer_cast<NSPopUpButton>(button.shared_from_this());
  qt::addRows(*this, *button.menu(), button.pullsDown() ? 1 : 0, [kept](const auto& item) {
    QMetaObject::invokeMethod(qGuiApp, [kept, item] { kept->itemChosen(item); }, Qt::QueuedConnection);
  });
  connect(this, &QMenu::aboutToHide, this, &QObject::deleteLater);
  connect(this, &QMenu::aboutToHide, &face, [&face] { face.setDown(false); });
}

void ButtonMenu::popUp(OpenedBy opener) {
  face_.setDown(true);
  const QRect anchor(face_.mapToGlobal(QPoint(0, 0)), face_.size());
  popup(qt::placeBeside(anchor, sizeHint(), qt::MenuEdge::Right));
  const auto rows = actions();
  const auto first = std::find_if(rows.begin(), rows.end(), [](auto* row) { return !row->isSeparator(); });
  if (opener == OpenedBy::Keyboard && first != rows.end()) setActiveAction(*first);
}

}  // namespace vistrel::windows
