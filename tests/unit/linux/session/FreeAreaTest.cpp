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

TEST(FreeArea, AWorkAreaToldAtAnotherScaleIsFoundInPixels) {
  struct Case {
    Rect told;
    PixelSize desktop;
    Rect expected;
  };
  const Case cases[] = {
      {{0, 0, 1920, 1140}, {1920, 1200}, {0, 0, 1920, 1140}},
      {{0, 0, 1280, 760}, {1280, 800}, {0, 0, 1920, 1140}},    // the scale was raised
      {{40, 0, 1240, 800}, {1280, 800}, {60, 0, 1860, 1200}},  // with the panel on the left
      {{0, 0, 2560, 1520}, {2560, 1600}, {0, 0, 1920, 1140}},  // lowered
      {{0, 0, 1920, 1100}, {1440, 900}, {0, 0, 1920, 1100}},   // and the panel was changed after that
      {{0, 0, 1920, 1140}, {5760, 1200}, {0, 0, 1920, 1140}},  // a desktop that is seen in parts
      {{30, 0, 1860, 1160}, {0, 0}, {30, 0, 1860, 1160}},
  };
  for (const auto& [told, desktop, expected] : cases) {
    SCOPED_TRACE(told.width);
    EXPECT_EQ(x11::workAreaIn({1920, 1200}, told, desktop), expected);
  }
}

}  // namespace
}  // namespace vistrel::session
