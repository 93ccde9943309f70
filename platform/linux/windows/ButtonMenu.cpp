#include "linux/windows/ButtonMenu.h"

#include <QGuiApplication>
#include <algorithm>
#include <utility>

#include "appkit/NSMenu.h"

namespace vistrel::windows {

ButtonMenu::ButtonMenu(QWidget& opener, const std::shared_ptr<NSMenu>& menu, std::size_t first,
                       qt::MenuItemChosen chosen)
    : QMenu(&opener) {
  setPalette(opener.palette());
  // The press that closes the menu does nothing else, or the button under it would open the menu again.
  setAttribute(Qt::WA_NoMouseReplay);
  setAccessibleName(QString::fromStdString(menu->title()));
  qt::addRows(*this, *menu, first, [chosen = std::move(chosen)](const auto& item) {
    QMetaObject::invokeMethod(
        qGuiApp, [chosen, item] { chosen(item); }, Qt::QueuedConnection);
  });
  connect(this, &QMenu::aboutToHide, this, &QObject::deleteLater);
}

void ButtonMenu::popUpBeside(const QRect& anchor, OpenedBy opener) {
  popup(qt::placeBeside(anchor, sizeHint(), qt::MenuEdge::Right));
  const auto rows = actions();
  const auto first = std::find_if(rows.begin(), rows.end(), [](auto* row) { return !row->isSeparator(); });
  if (opener == OpenedBy::Keyboard && first != rows.end()) setActiveAction(*first);
}

}  // namespace vistrel::windows
