#include "linux/tray/IconAnchor.h"

#include <gtest/gtest.h>

namespace vistrel::tray {
namespace {

// Two screens side by side: a panel at the top of the left one and at the left edge of the right one.
const std::vector<backend::Screen> kScreens = {
    {.name = "left", .frame = {0, 0, 1280, 800}, .visibleFrame = {0, 28, 1280, 772}},
    {.name = "right", .frame = {1280, 0, 1280, 800}, .visibleFrame = {1320, 0, 1240, 800}},
};

TEST(IconAnchor, TheIconIsInThePanelUnderThePointer) {
  struct Case {
    Point pointer;
    Rect panel;
  };
  const Case cases[] = {
      {{640, 14}, {0, 0, 1280, 28}},     {{1279, 0}, {0, 0, 1280, 28}},     {{0, 27}, {0, 0, 1280, 28}},
      {{1290, 400}, {1280, 0, 40, 800}}, {{1281, 799}, {1280, 0, 40, 800}},
  };
  for (const auto& [pointer, panel] : cases) {
    const auto icon = guessIconFrame(pointer, kScreens);
    ASSERT_TRUE(icon);
    EXPECT_TRUE(icon->contains(pointer));
    EXPECT_EQ(icon->intersection(panel), *icon);
    EXPECT_LE(std::min(icon->width, icon->height), 28);
  }
}

TEST(IconAnchor, APanelWithoutReservedRoomIsGuessedAtTheEdge) {
  const auto icon = guessIconFrame({2000, 790}, kScreens);
  ASSERT_TRUE(icon);
  EXPECT_TRUE(icon->contains({2000, 790}));
  EXPECT_EQ(icon->maxY(), 800);
}

TEST(IconAnchor, APointerElsewhereTellsNothing) {
  EXPECT_FALSE(guessIconFrame({640, 400}, kScreens));
  EXPECT_FALSE(guessIconFrame({-5, 400}, kScreens));
}

}  // namespace
}  // namespace vistrel::tray
