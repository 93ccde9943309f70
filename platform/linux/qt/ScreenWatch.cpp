#include "qt/ScreenWatch.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <utility>

#include "qt/Geometry.h"

namespace vistrel::qt {

namespace {

// A change of mode comes in several steps; they are one change.
constexpr std::chrono::milliseconds kSettleTime{100};

bool isSamePlace(const host::Screen& a, const host::Screen& b) {
  return a.name == b.name && a.frame == b.frame && a.scale == b.scale;
}

host::Screen describe(const QScreen& screen) {
  return {.name = screen.name().toStdString(),
          .frame = fromQt(screen.geometry()),
          .visibleFrame = fromQt(screen.availableGeometry()),
          .scale = screen.devicePixelRatio(),
          .isPrimary = &screen == QGuiApplication::primaryScreen()};
}

}  // namespace

ScreenWatch::ScreenWatch(std::function<void()> handler) : handler_(std::move(handler)), known_(screens()) {
  for (QScreen* screen : QGuiApplication::screens()) watch(screen);
  QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &context_, [this](QScreen* screen) {
    watch(screen);
    checkSoon();
  });
  QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &context_, [this] { checkSoon(); });
}

std::vector<host::Screen> ScreenWatch::screens() {
  std::vector<host::Screen> result;
  for (const QScreen* screen : QGuiApplication::screens()) result.push_back(describe(*screen));
  return result;
}

void ScreenWatch::watch(QScreen* screen) {
  const auto soon = [this] { checkSoon(); };
  QObject::connect(screen, &QScreen::geometryChanged, &context_, soon);
  QObject::connect(screen, &QScreen::logicalDotsPerInchChanged, &context_, soon);
  QObject::connect(screen, &QScreen::physicalDotsPerInchChanged, &context_, soon);
}

void ScreenWatch::checkSoon() {
  check_ = std::make_unique<SingleShot>(kSettleTime, [this] { check(); });
}

void ScreenWatch::check() {
  const auto before = std::exchange(known_, screens());
  if (std::equal(before.begin(), before.end(), known_.begin(), known_.end(), isSamePlace)) return;
  handler_();
}

}  // namespace vistrel::qt
