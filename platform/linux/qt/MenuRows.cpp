#include "linux/qt/MenuRows.h"

#include <QGuiApplication>
#include <QList>
#include <QMenu>
#include <QScreen>
#include <QStyle>
#include <QTextBoundaryFinder>
#include <algorithm>
#include <vector>

#include "appkit/NSMenu.h"

namespace vistrel::qt {

namespace {

// What a person sees as one character counts as one.
constexpr int kLongestRow = 60;

// Between the frame and the first and last row, in points.
constexpr int kRoomAtTheFrame = 3;

bool breaksTheLine(QChar c) {
  return c.category() == QChar::Other_Control || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

bool hasInk(const QString& text) {
  const auto characters = text.toUcs4();
  return std::any_of(characters.begin(), characters.end(),
                     [](char32_t c) { return QChar::isPrint(c) && !QChar::isSpace(c); });
}

std::vector<qsizetype> characterStarts(const QString& text) {
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
  std::vector<qsizetype> starts;
  for (qsizetype at = 0; at >= 0; at = finder.toNextBoundary()) starts.push_back(at);
  return starts;
}

QString elidedInTheMiddle(const QString& text) {
  const auto starts = characterStarts(text);
  const auto count = static_cast<int>(starts.size()) - 1;
  if (count <= kLongestRow) return text;
  const int head = kLongestRow / 2;
  const int tail = kLongestRow - head - 1;
  return text.left(starts[head]) + QChar(0x2026) + text.mid(starts[count - tail]);
}

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

QString menuRowText(const std::string& title) {
  QString text = QString::fromStdString(title);
  for (QChar& c : text) {
    if (breaksTheLine(c)) c = u' ';
  }
  return hasInk(text) ? elidedInTheMiddle(text) : QStringLiteral("(no name)");
}

QString labelForQtMenu(const QString& text) { return QString(text).replace(u'&', QStringLiteral("&&")); }

QString labelForBusMenu(const QString& text) {
  QString label = QString(text).replace(u'_', QStringLiteral("__"));
  const auto first = label.indexOf(u'&');
  if (first >= 0 && first < label.size() - 1) label.insert(first, u'&');
  return label;
}

// Some styles draw the frame over the first line.
void keepSeparators(QMenu& native) {
  native.setSeparatorsCollapsible(false);
  const int frame = native.style()->pixelMetric(QStyle::PM_MenuPanelWidth, nullptr, &native) +
                    native.style()->pixelMetric(QStyle::PM_MenuVMargin, nullptr, &native);
  const int room = std::max(0, kRoomAtTheFrame - frame);
  native.setContentsMargins(0, room, 0, room);
}

void addRows(QMenu& native, const NSMenu& menu, std::size_t first, const MenuItemChosen& chosen) {
  keepSeparators(native);
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
