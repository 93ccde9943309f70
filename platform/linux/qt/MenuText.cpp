#include "qt/MenuText.h"

namespace vistrel::qt {

namespace {

// About forty letters: a menu beside a small picture, not across the screen.
constexpr int kWidestTitleInEms = 24;

bool breaksLine(QChar c) {
  return c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line ||
         c.category() == QChar::Separator_Paragraph;
}

}  // namespace

QString onOneLine(const std::string& text) {
  QString line = QString::fromStdString(text);
  for (QChar& c : line) {
    if (breaksLine(c)) c = u' ';
  }
  return line;
}

QString menuText(const std::string& title, const QFontMetrics& metrics) {
  const int widest = kWidestTitleInEms * metrics.horizontalAdvance(u'M');
  QString text = metrics.elidedText(onOneLine(title), Qt::ElideMiddle, widest);
  return text.replace(u'&', QStringLiteral("&&"));
}

}  // namespace vistrel::qt
