#include "linux/tray/IconAnchor.h"

#include <algorithm>
#include <iterator>

namespace vistrel::tray {

namespace {

constexpr double kIconLength = 24;
// A panel that hides itself or reserves nothing is at most about this thick.
constexpr double kUnreservedPanel = 64;

Rect upright(double x, double top, double height, const Rect& screen) {
  const double left = std::clamp(x - kIconLength / 2, screen.x, screen.maxX() - kIconLength);
  return {left, top, kIconLength, height};
}

Rect lying(double y, double left, double width, const Rect& screen) {
  const double top = std::clamp(y - kIconLength / 2, screen.y, screen.maxY() - kIconLength);
  return {left, top, width, kIconLength};
}

std::optional<Rect> inMargins(Point p, const Rect& screen, const Rect& free) {
  if (p.y < free.y) return upright(p.x, screen.y, free.y - screen.y, screen);
  if (p.y >= free.maxY()) return upright(p.x, free.maxY(), screen.maxY() - free.maxY(), screen);
  if (p.x < free.x) return lying(p.y, screen.x, free.x - screen.x, screen);
  if (p.x >= free.maxX()) return lying(p.y, free.maxX(), screen.maxX() - free.maxX(), screen);
  return std::nullopt;
}

}  // namespace

std::optional<Rect> guessIconFrame(Point pointer, const std::vector<backend::Screen>& screens) {
  const auto holds = [&](const auto& screen) { return screen.frame.contains(pointer); };
  const auto screen = std::find_if(screens.begin(), screens.end(), holds);
  if (screen == screens.end()) return std::nullopt;
  if (const auto inPanel = inMargins(pointer, screen->frame, screen->visibleFrame)) return inPanel;
  return inMargins(pointer, screen->frame, screen->frame.inset(kUnreservedPanel, kUnreservedPanel));
}

Rect iconFrameAtPanelEnd(const std::vector<backend::Screen>& screens) {
  const auto isPrimary = [](const auto& screen) { return screen.isPrimary; };
  const auto found = std::find_if(screens.begin(), screens.end(), isPrimary);
  const auto& [name, frame, free, scale, isMain] = found != screens.end() ? *found : screens.front();
  struct Panel {
    double thickness;
    Rect end;
  };
  const double left = free.x - frame.x;
  const double right = frame.maxX() - free.maxX();
  const double top = free.y - frame.y;
  const double bottom = frame.maxY() - free.maxY();
  const Panel panels[] = {{top, upright(frame.maxX(), frame.y, top, frame)},
                          {bottom, upright(frame.maxX(), free.maxY(), bottom, frame)},
                          {left, lying(frame.maxY(), frame.x, left, frame)},
                          {right, lying(frame.maxY(), free.maxX(), right, frame)}};
  const auto thinner = [](const Panel& a, const Panel& b) { return a.thickness < b.thickness; };
  return std::max_element(std::begin(panels), std::end(panels), thinner)->end;
}

}  // namespace vistrel::tray
