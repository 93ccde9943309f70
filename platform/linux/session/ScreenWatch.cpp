#include "linux/session/ScreenWatch.h"

#include <qpa/qplatformscreen.h>

#include <QGuiApplication>
#include <QMarginsF>
#include <QScreen>
#include <algorithm>
#include <utility>

#include "linux/qt/Geometry.h"

namespace vistrel::session {

namespace {

// A change of mode comes in several steps; they are one change.
constexpr std::chrono::milliseconds kSettleTime{100};

bool isSamePlace(const backend::Screen& a, const backend::Screen& b) {
  return a.name == b.name && a.frame == b.frame && a.scale == b.scale && a.isPrimary == b.isPrimary;
}

// The order of the screens counts for nothing.
bool areSamePlaces(const std::vector<backend::Screen>& a, const std::vector<backend::Screen>& b) {
  return std::is_permutation(a.begin(), a.end(), b.begin(), b.end(), isSamePlace);
}

backend::Screen describe(const QScreen& screen) {
  return {.name = screen.name().toStdString(),
          .frame = qt::fromQt(screen.geometry()),
          .visibleFrame = qt::fromQt(screen.availableGeometry()),
          .scale = screen.devicePixelRatio(),
          .isPrimary = &screen == QGuiApplication::primaryScreen()};
}

Rect withoutPanels(const QScreen& screen, const std::vector<x11::Strut>& struts) {
  const QMarginsF pixels = panelMargins(screen.handle()->geometry(), struts);
  const QRectF free = QRectF(screen.geometry()).marginsRemoved(pixels / screen.devicePixelRatio());
  return {free.x(), free.y(), free.width(), free.height()};
}

bool isKnownToQt(const Rect& workArea, const QScreen& screen) {
  return qt::fromQt(screen.handle()->availableGeometry()) ==
         workArea.intersection(qt::fromQt(screen.handle()->geometry()));
}

Rect inPoints(const Rect& pixels, const QScreen& screen) {
  const double ratio = screen.devicePixelRatio();
  const Rect points{pixels.x / ratio, pixels.y / ratio, pixels.width / ratio, pixels.height / ratio};
  return points.intersection(qt::fromQt(screen.geometry()));
}

}  // namespace

ScreenWatch::ScreenWatch(x11::X11Connection& x11, std::function<void()> handler)
    : x11_(x11), handler_(std::move(handler)), known_(screens()) {
  for (QScreen* screen : QGuiApplication::screens()) watch(screen);
  QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &context_, [this](QScreen* screen) {
    watch(screen);
    checkSoon();
  });
  QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &context_, [this] { checkSoon(); });
  QObject::connect(qGuiApp, &QGuiApplication::primaryScreenChanged, &context_, [this] { checkSoon(); });
}

std::vector<backend::Screen> ScreenWatch::screens() {
  std::vector<backend::Screen> result;
  const auto all = QGuiApplication::screens();
  for (const QScreen* screen : all) result.push_back(describe(*screen));
  // Qt leaves panels out of account as soon as there are two screens.
  if (const auto area = x11::workArea(x11_); area && all.size() == 1) {
    if (!isKnownToQt(*area, *all[0])) result[0].visibleFrame = inPoints(*area, *all[0]);
    return result;
  }
  const auto struts = x11::panelStruts(x11_);
  for (qsizetype i = 0; i < all.size(); ++i) result[i].visibleFrame = withoutPanels(*all[i], struts);
  return result;
}

void ScreenWatch::watch(QScreen* screen) {
  const auto soon = [this] { checkSoon(); };
  QObject::connect(screen, &QScreen::geometryChanged, &context_, soon);
  QObject::connect(screen, &QScreen::logicalDotsPerInchChanged, &context_, soon);
  QObject::connect(screen, &QScreen::physicalDotsPerInchChanged, &context_, soon);
}

void ScreenWatch::checkSoon() {
  check_ = std::make_unique<qt::SingleShot>(kSettleTime, [this] { check(); });
}

void ScreenWatch::check() {
  const auto before = std::exchange(known_, screens());
  if (!areSamePlaces(before, known_)) handler_();
}

QMargins panelMargins(const QRect& screen, const std::vector<x11::Strut>& struts) {
  using Edge = x11::Strut::Edge;
  QMargins margins;
  for (const auto& strut : struts) {
    const QRect part = screen & QRect(strut.x, strut.y, strut.width, strut.height);
    const bool isUpright = strut.edge == Edge::Left || strut.edge == Edge::Right;
    if (part.isEmpty()) continue;
    if (isUpright ? part.width() == screen.width() : part.height() == screen.height()) continue;
    QMargins own;
    if (strut.edge == Edge::Left) own.setLeft(part.width());
    if (strut.edge == Edge::Right) own.setRight(part.width());
    if (strut.edge == Edge::Top) own.setTop(part.height());
    if (strut.edge == Edge::Bottom) own.setBottom(part.height());
    margins = margins | own;
  }
  return margins;
}

}  // namespace vistrel::session
