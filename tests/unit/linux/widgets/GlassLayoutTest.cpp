#include "linux/widgets/GlassLayout.h"

#include <gtest/gtest.h>

namespace vistrel::widgets {

void PrintTo(const PixelRect& rect, std::ostream* out) {
  *out << rect.x << "," << rect.y << " " << rect.size.width << "x" << rect.size.height;
}

namespace {

TEST(GlassLayout, APictureFitsWholeInTheMiddle) {
  struct Case {
    PixelSize glass;
    PixelSize picture;
    PixelRect wanted;
  };
  const Case cases[] = {
      {{426, 240}, {1280, 720}, {0, 0, {426, 240}}},
      {{1278, 720}, {1280, 720}, {0, 0, {1278, 720}}},
      {{426, 240}, {640, 480}, {53, 0, {320, 240}}},
      {{426, 240}, {1080, 1920}, {145, 0, {135, 240}}},
      {{426, 240}, {3200, 400}, {0, 93, {426, 53}}},
      {{426, 240}, {10000, 1}, {0, 119, {426, 1}}},
      {{639, 360}, {1, 1}, {139, 0, {360, 360}}},
      {{426, 240}, {0, 0}, {}},
      {{0, 240}, {640, 480}, {}},
  };
  for (const auto& [glass, picture, wanted] : cases) EXPECT_EQ(letterBox(glass, picture), wanted);
}

TEST(GlassLayout, NeighboursInPointsAreNeighboursInPixels) {
  for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0, 2.6}) {
    const PixelRect left = pixelRect({1, 9, 213, 240}, scale);
    const PixelRect right = pixelRect({214, 9, 213, 240}, scale);
    EXPECT_EQ(left.x + left.size.width, right.x) << scale;
    EXPECT_EQ(left.size.height, right.size.height) << scale;
  }
  EXPECT_EQ(pixelRect({1, 8, 426, 240}, 2), (PixelRect{2, 16, {852, 480}}));
}

}  // namespace
}  // namespace vistrel::widgets
