#include "appkit/ScreenGeometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace vistrel {

namespace {

using Side = PopoverTip::Side;

// Room kept between a popover and the edges of its screen.
constexpr double kScreenMargin = 4;

double distance(Point p, const Rect& r) {
  const double dx = std::max({r.x - p.x, 0.0, p.x - r.maxX()});
  const double dy = std::max({r.y - p.y, 0.0, p.y - r.maxY()});
  return std::hypot(dx, dy);
}

struct SideDistance {
  Side side;
  double distance;
};

// A panel lies along an edge of its screen; what hangs from it points to the opposite edge.
Side sideAwayFromEdge(const Rect& anchor, const Rect& screen) {
  const Point c = anchor.center();
  const std::array<SideDistance, 4> edges = {{{Side::Below, c.y - screen.y},
                                              {Side::Above, screen.maxY() - c.y},
                                              {Side::RightOf, c.x - screen.x},
                                              {Side::LeftOf, screen.maxX() - c.x}}};
  const auto nearer = [](const auto& a, const auto& b) { return a.distance < b.distance; };
  return std::min_element(edges.begin(), edges.end(), nearer)->side;
}

bool isInPanel(const Rect& anchor, const backend::Screen& screen) {
  return !screen.visibleFrame.contains(anchor.center());
}

// Corners are near two edges: the panel's strut tells which of them is the panel.
Side sideOf(const Rect& anchor, const backend::Screen& screen) {
  if (!isInPanel(anchor, screen)) return sideAwayFromEdge(anchor, screen.frame);
  const Point c = anchor.center();
  const Rect& free = screen.visibleFrame;
  if (c.y < free.y) return Side::Below;
  if (c.y >= free.maxY()) return Side::Above;
  return c.x < free.x ? Side::RightOf : Side::LeftOf;
}

struct Panel {
  Side side;
  double thickness;
};

Panel panelOf(const backend::Screen& screen) {
  const Rect& f = screen.frame;
  const Rect& v = screen.visibleFrame;
  const std::array<Panel, 4> panels = {{{Side::Below, v.y - f.y},
                                        {Side::Above, f.maxY() - v.maxY()},
                                        {Side::RightOf, v.x - f.x},
                                        {Side::LeftOf, f.maxX() - v.maxX()}}};
  const auto thinner = [](const auto& a, const auto& b) { return a.thickness < b.thickness; };
  return *std::max_element(panels.begin(), panels.end(), thinner);
}

// A stand-in for an icon: the spot of the panel that is nearest to the pointer.
Rect anchorOnPanel(const backend::Screen& screen, Point pointer) {
  const Rect& v = screen.visibleFrame;
  switch (panelOf(screen).side) {
    case Side::Below:
      return {pointer.x, v.y, 0, 0};
    case Side::Above:
      return {pointer.x, v.maxY(), 0, 0};
    case Side::RightOf:
      return {v.x, pointer.y, 0, 0};
    case Side::LeftOf:
      return {v.maxX(), pointer.y, 0, 0};
  }
  return {pointer.x, v.y, 0, 0};
}

Size shrunkTo(Size size, Size room) {
  const double factor = std::min({1.0, room.width / size.width, room.height / size.height});
  if (factor >= 1.0) return size;
  return {std::floor(size.width * factor), std::floor(size.height * factor)};
}

bool isVertical(Side side) { return side == Side::Below || side == Side::Above; }

Rect beside(const Rect& anchor, Side side, Size size) {
  const Point c = anchor.center();
  switch (side) {
    case Side::Below:
      return {c.x - size.width / 2, anchor.maxY() + kPopoverTipLength, size.width, size.height};
    case Side::Above:
      return {c.x - size.width / 2, anchor.y - kPopoverTipLength - size.height, size.width, size.height};
    case Side::RightOf:
      return {anchor.maxX() + kPopoverTipLength, c.y - size.height / 2, size.width, size.height};
    case Side::LeftOf:
      return {anchor.x - kPopoverTipLength - size.width, c.y - size.height / 2, size.width, size.height};
  }
  return {};
}

Rect movedInto(Rect frame, const Rect& room) {
  frame.x = std::round(std::max(room.x, std::min(frame.x, room.maxX() - frame.width)));
  frame.y = std::round(std::max(room.y, std::min(frame.y, room.maxY() - frame.height)));
  return frame;
}

// Trays are at the end of a panel, so that is where one looks.
Rect cornerOnPanel(const backend::Screen& screen, Size size) {
  const Rect room = screen.visibleFrame.inset(kScreenMargin, kScreenMargin);
  const Size fitting = shrunkTo(size, {room.width, room.height});
  const Panel panel = panelOf(screen);
  const bool isLeft = panel.thickness > 0 && panel.side == Side::RightOf;
  const bool isTop = panel.thickness <= 0 || panel.side == Side::Below;
  return movedInto(
      {isLeft ? room.x : room.maxX(), isTop ? room.y : room.maxY(), fitting.width, fitting.height}, room);
}

Point tipLocation(const Rect& anchor, Side side) {
  const Point c = anchor.center();
  switch (side) {
    case Side::Below:
      return {c.x, anchor.maxY()};
    case Side::Above:
      return {c.x, anchor.y};
    case Side::RightOf:
      return {anchor.maxX(), c.y};
    case Side::LeftOf:
      return {anchor.x, c.y};
  }
  return c;
}

}  // namespace

const backend::Screen& screenAt(Point location, const std::vector<backend::Screen>& screens) {
  const auto nearer = [&](const auto& a, const auto& b) {
    return distance(location, a.frame) < distance(location, b.frame);
  };
  const auto holds = [&](const auto& screen) { return screen.frame.contains(location); };
  const auto found = std::find_if(screens.begin(), screens.end(), holds);
  return found != screens.end() ? *found : *std::min_element(screens.begin(), screens.end(), nearer);
}

Rect centeredOnMainScreen(Size size, const std::vector<backend::Screen>& screens) {
  const auto isPrimary = [](const auto& screen) { return screen.isPrimary; };
  const auto found = std::find_if(screens.begin(), screens.end(), isPrimary);
  const Rect room = (found != screens.end() ? *found : screens.front()).visibleFrame;
  const Point c = room.center();
  return movedInto({c.x - size.width / 2, c.y - size.height / 2, size.width, size.height}, room);
}

Rect movedOntoScreen(const Rect& frame, const std::vector<backend::Screen>& screens) {
  return movedInto(frame, screenAt(frame.center(), screens).visibleFrame);
}

PopoverPlace placeWithoutTray(Size size, Point pointer, const std::vector<backend::Screen>& screens) {
  return {cornerOnPanel(screenAt(pointer, screens), size), std::nullopt};
}

PopoverPlace placePopover(Size size, const std::optional<Rect>& given, Point pointer,
                          const std::vector<backend::Screen>& screens) {
  const backend::Screen& screen = screenAt(given ? given->center() : pointer, screens);
  const Rect anchor = given ? *given : anchorOnPanel(screen, pointer);
  const Side side = given ? sideOf(anchor, screen) : panelOf(screen).side;
  Rect room = screen.visibleFrame.inset(kScreenMargin, kScreenMargin);
  Size available{room.width, room.height};
  (isVertical(side) ? available.height : available.width) -= kPopoverTipLength;
  const Rect frame = movedInto(beside(anchor, side, shrunkTo(size, available)), room);
  return {frame, PopoverTip{side, tipLocation(anchor, side)}};
}

}  // namespace vistrel
