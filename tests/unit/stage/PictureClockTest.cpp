#include "stage/PictureClock.h"

#include <gtest/gtest.h>

namespace vistrel::stage {
namespace {

constexpr int kWidth = 426;
constexpr int kHeight = 240;

/// The brightness of a picture with that clock, as the camera draws it.
bool isLight(std::uint32_t counter, std::uint32_t milliseconds, int x, int y) {
  const std::uint64_t cells = clock::encode(y < clock::rowTop(kHeight, 1) ? counter : milliseconds);
  return (cells >> (clock::kCells - 1 - x * clock::kCells / kWidth) & 1U) != 0;
}

TEST(PictureClock, ReadsBothRowsEitherWayRound) {
  for (const std::uint32_t counter : {0U, 1U, 0x5a5a5a5U, clock::kMask}) {
    for (const bool isMirrored : {false, true}) {
      const auto reading = clock::read(kWidth, kHeight, [&](int x, int y) {
        return isLight(counter, 77, isMirrored ? kWidth - 1 - x : x, y);
      });
      ASSERT_TRUE(reading);
      EXPECT_EQ(reading->counter, counter);
      EXPECT_EQ(reading->milliseconds, 77U);
      EXPECT_EQ(reading->isMirrored, isMirrored);
    }
  }
}

TEST(PictureClock, RefusesWhatIsNoClock) {
  EXPECT_FALSE(clock::read(kWidth, kHeight, [](int, int) { return true; }));
  EXPECT_FALSE(clock::read(kWidth, kHeight, [](int, int) { return false; }));
  for (int cell = 0; cell < clock::kCells; ++cell)
    EXPECT_FALSE(clock::decode(clock::encode(1234) ^ std::uint64_t{1} << cell)) << cell;
}

TEST(PictureClock, CountsAcrossTheWrap) {
  EXPECT_EQ(clock::difference(3, clock::kMask), 4);
  EXPECT_EQ(clock::difference(clock::kMask, 3), -4);
}

}  // namespace
}  // namespace vistrel::stage
