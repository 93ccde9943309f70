#include "linux/session/ScreenWatch.h"

#include <gtest/gtest.h>

namespace vistrel::session {
namespace {

using Edge = x11::Strut::Edge;

// 2560x1600 pixels in all: a large screen on the left, two small ones above each other on the right.
const QRect kLarge(0, 0, 1280, 1600);
const QRect kUpper(1280, 0, 1280, 800);
const QRect kLower(1280, 800, 1280, 800);

TEST(FreeArea, APanelTakesRoomOnItsOwnScreenAlone) {
  struct Case {
    x11::Strut strut;
    QMargins large, upper, lower;
  };
  const Case cases[] = {
      {{Edge::Top, 1280, 0, 1280, 28}, {}, {0, 28, 0, 0}, {}},
      {{Edge::Top, 2000, 0, 560, 28}, {}, {0, 28, 0, 0}, {}},
      {{Edge::Top, 0, 0, 2560, 28}, {0, 28, 0, 0}, {0, 28, 0, 0}, {}},
      {{Edge::Left, 0, 0, 40, 1600}, {40, 0, 0, 0}, {}, {}},
      {{Edge::Right, 2500, 800, 60, 800}, {}, {}, {0, 0, 60, 0}},
      {{Edge::Bottom, 1280, 772, 1280, 828},
       {},
       {0, 0, 0, 28},
       {}},  // between the two: the lower one is passed over
      {{Edge::Bottom, 0, 1560, 1280, 40}, {0, 0, 0, 40}, {}, {}},
  };
  for (const auto& [strut, large, upper, lower] : cases) {
    SCOPED_TRACE(strut.x * 10000 + strut.y);
    EXPECT_EQ(panelMargins(kLarge, {strut}), large);
    EXPECT_EQ(panelMargins(kUpper, {strut}), upper);
    EXPECT_EQ(panelMargins(kLower, {strut}), lower);
  }
  EXPECT_EQ(
      panelMargins(kUpper, {cases[0].strut, {Edge::Top, 1280, 0, 1280, 40}, {Edge::Right, 2558, 0, 2, 9}}),
      QMargins(0, 40, 2, 0));
}

}  // namespace
}  // namespace vistrel::session
