#include "linux/qt/MenuText.h"

#include <QList>
#include <QTextBoundaryFinder>
#include <algorithm>
#include <vector>

namespace vistrel::qt {

namespace {

// What a person sees as one character counts as one.
constexpr int kLongestRow = 60;

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

}  // namespace vistrel::qt
