#include <gtest/gtest.h>
#include <spa/buffer/meta.h>

#include <cmath>
#include <vector>

#include "SampledPicture.h"
#include "linux/camera/PictureConverter.h"
#include "linux/camera/PipeWireFormats.h"

namespace vistrel::camera {
namespace {

// What is to be seen of a shaded picture, at the middle of each pixel of the glass.
double largestErrorOfPart(const Layout& layout, PixelSize from, PixelSize to, const Rect& part,
                          bool isAcross) {
  Source source(layout, from, 0);
  source.shade(isAcross);
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(to.width) * 4 * to.height);
  PictureConverter converter;
  converter.convert(source.picture(YuvColor::Bt601Full), {pixels.data(), to.width * 4, to, true, part});
  double worst = 0;
  for (int y = 0; y < to.height; ++y)
    for (int x = 0; x < to.width; ++x) {
      const double column = (part.x + part.width * (to.width - x - 0.5) / to.width) * from.width;
      const double row = (part.y + part.height * (y + 0.5) / to.height) * from.height;
      const double value = Source::slopeAt(isAcross ? column : row);
      const double chroma = layout.chroma == Chroma::None ? 128 : value;
      std::array<double, 3> want{value, chroma, chroma};
      if (!layout.isRgb) want = toRgb(want, kMatrices[1]);
      for (int i = 0; i < 3; ++i)
        worst = std::max(
            worst, std::abs(std::clamp(want[i], 0.0, 255.0) - pixels[4UL * (y * to.width + x) + 2 - i]));
    }
  return worst;
}

TEST(PictureConverter, ShowsThePartThatIsAskedFor) {
  // Two pixels of the slope, which blue doubles, and the rounding.
  constexpr double kTolerance = 2 * 1.2 * 1.772 + kRounding;
  const Rect parts[] = {{0, 0, 0.25, 0.25},
                        {0.75, 0.75, 0.25, 0.25},
                        {0.1, 0.3, 0.5, 0.5},
                        {0.33, 0.41, 0.27, 0.31},
                        {0.6, 0.05, 0.4, 0.9}};
  for (const Layout& layout : kLayouts)
    for (const PixelSize size : {PixelSize{160, 160}, {161, 163}})
      for (const Rect& part : parts)
        for (const PixelSize glass : {PixelSize{20, 11}, {80, 80}, {161, 203}})
          for (const bool isAcross : {false, true})
            EXPECT_LE(largestErrorOfPart(layout, size, glass, part, isAcross), kTolerance)
                << layout.name << ' ' << size.width << " part " << part.x << ' ' << part.y << " to "
                << glass.width << (isAcross ? " across" : " down");
}

/// A picture of numbered pixels, and what a camera makes of it before it sends it.
struct Numbered {
  PixelSize size;
  std::vector<std::uint32_t> pixels;

  [[nodiscard]] std::uint32_t at(int x, int y) const {
    return pixels[static_cast<std::size_t>(y) * size.width + x];
  }
  template <class At>
  static Numbered make(PixelSize size, At at) {
    Numbered result{size, {}};
    for (int y = 0; y < size.height; ++y)
      for (int x = 0; x < size.width; ++x) result.pixels.push_back(at(x, y));
    return result;
  }
  [[nodiscard]] Numbered flipped() const {
    return make(size, [this](int x, int y) { return at(size.width - 1 - x, y); });
  }
  [[nodiscard]] Numbered turnedLeft() const {
    return make({size.height, size.width}, [this](int x, int y) { return at(size.width - 1 - y, x); });
  }
};

TEST(PictureConverter, UndoesWhatACameraSaysOfItsPicture) {
  const Numbered upright = Numbered::make({24, 16}, [](int x, int y) {
    return 0xff000000U | static_cast<std::uint32_t>(x * 0x50000 + y * 0x0b);
  });
  for (std::uint32_t transform = 0; transform < 8; ++transform)
    for (const bool isMirrored : {false, true})
      for (const Rect& part : {Rect{0, 0, 1, 1}, Rect{0.25, 0.125, 0.5, 0.75}}) {
        spa_meta_videotransform value{transform};
        spa_meta meta{SPA_META_VideoTransform, sizeof value, &value};
        Numbered sent = transform < 4 ? upright : upright.flipped();
        for (std::uint32_t turn = 0; turn < transform % 4; ++turn) sent = sent.turnedLeft();
        const PlaneMemory memory{
            {reinterpret_cast<const std::uint8_t*>(sent.pixels.data()), sent.pixels.size() * 4}, 0};
        Picture picture = pictureIn({&memory, 1}, PixelFormat::Bgrx, sent.size, YuvColor::Bt601Full).value();
        picture.orientation = orientationOf({1, 0, &meta, nullptr});
        EXPECT_EQ(picture.orientation.turned(sent.size), upright.size);
        const int left = static_cast<int>(part.x * upright.size.width);
        const int top = static_cast<int>(part.y * upright.size.height);
        const Numbered want =
            Numbered::make({static_cast<int>(part.width * 24), static_cast<int>(part.height * 16)},
                           [&](int x, int y) { return upright.at(left + x, top + y); });
        Numbered got{want.size, std::vector<std::uint32_t>(want.pixels.size())};
        PictureConverter converter;
        converter.convert(picture, {reinterpret_cast<std::uint8_t*>(got.pixels.data()), got.size.width * 4,
                                    got.size, isMirrored, part});
        EXPECT_EQ((isMirrored ? got.flipped() : got).pixels, want.pixels) << transform << ' ' << isMirrored;
      }
  EXPECT_EQ(orientationOf({0, 0, nullptr, nullptr}), Orientation{});
}

}  // namespace
}  // namespace vistrel::camera
