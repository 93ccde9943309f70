#include "appkit/ScreenGeometry.h"

#include <gtest/gtest.h>

namespace vistrel {
namespace {

using Side = PopoverTip::Side;

TEST(ScreenGeometry, PopoverHangsFromThePanelOnItsOwnScreen) {
  struct Case {
    std::string description;
    Rect visible;
    std::optional<Rect> icon;
    Size size;
    Side side;
    Rect frame;
  };
  const Size small{426, 240};
  const std::vector<Case> cases = {
      {"top panel", {0, 28, 1280, 772}, Rect{600, 2, 24, 24}, small, Side::Below, {399, 34, 426, 240}},
      {"top right corner",
       {0, 28, 1280, 772},
       Rect{1250, 2, 24, 24},
       small,
       Side::Below,
       {850, 34, 426, 240}},
      {"bottom left corner", {0, 0, 1280, 772}, Rect{4, 775, 20, 20}, small, Side::Above, {4, 527, 426, 240}},
      {"left panel, top corner",
       {40, 0, 1240, 800},
       Rect{8, 4, 24, 24},
       small,
       Side::RightOf,
       {44, 4, 426, 240}},
      {"right panel", {0, 0, 1240, 800}, Rect{1248, 400, 24, 24}, small, Side::LeftOf, {810, 292, 426, 240}},
      {"panel without a strut",
       {0, 0, 1280, 800},
       Rect{600, 2, 24, 24},
       small,
       Side::Below,
       {399, 34, 426, 240}},
      {"no icon", {0, 28, 1280, 772}, std::nullopt, small, Side::Below, {427, 36, 426, 240}},
      {"no icon, no panel", {0, 0, 1280, 800}, std::nullopt, small, Side::Below, {427, 8, 426, 240}},
      {"too large", {0, 28, 1280, 572}, Rect{600, 2, 24, 24}, {1278, 720}, Side::Below, {119, 34, 986, 555}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.description);
    const std::vector<backend::Screen> screens = {
        {"main", {0, 0, 1280, 800}, c.visible, 1, true},
        {"other", {1280, 0, 1280, 800}, {1280, 0, 1280, 800}, 2, false}};
    const auto place = placePopover(c.size, c.icon, {640, 400}, screens);
    ASSERT_TRUE(place.tip);
    EXPECT_EQ(place.tip->side, c.side);
    EXPECT_NEAR(place.frame.x, c.frame.x, 1);
    EXPECT_NEAR(place.frame.y, c.frame.y, 1);
    EXPECT_NEAR(place.frame.width, c.frame.width, 2);
    EXPECT_NEAR(place.frame.height, c.frame.height, 2);
  }
}

TEST(ScreenGeometry, WithoutATrayItLiesWhereATrayWouldBe) {
  const std::vector<std::pair<Rect, Point>> cases = {{{0, 0, 1280, 800}, {850, 4}},
                                                     {{0, 28, 1280, 772}, {850, 32}},
                                                     {{0, 0, 1280, 772}, {850, 528}},
                                                     {{40, 0, 1240, 800}, {44, 556}},
                                                     {{0, 0, 1240, 800}, {810, 556}}};
  for (const auto& [visible, place] : cases) {
    const auto found =
        placeWithoutTray({426, 240}, {640, 400}, {{"main", {0, 0, 1280, 800}, visible, 1, true}});
    EXPECT_EQ(found.frame, (Rect{place.x, place.y, 426, 240}));
    EXPECT_FALSE(found.tip);
  }
}

TEST(ScreenGeometry, FramesComeBackOntoAScreen) {
  const std::vector<backend::Screen> screens = {{"main", {0, 0, 1280, 800}, {0, 28, 1280, 772}, 1, true}};
  EXPECT_EQ(movedOntoScreen({100, 100, 480, 360}, screens), (Rect{100, 100, 480, 360}));
  EXPECT_EQ(movedOntoScreen({3000, -50, 480, 360}, screens), (Rect{800, 28, 480, 360}));
  EXPECT_EQ(centeredOnMainScreen({480, 360}, screens), (Rect{400, 234, 480, 360}));
}

}  // namespace
}  // namespace vistrel
