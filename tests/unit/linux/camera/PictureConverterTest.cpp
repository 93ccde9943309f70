#include "linux/camera/PictureConverter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "SampledPicture.h"

namespace vistrel::camera {
namespace {

double between(double a, double b, double share) { return a + (b - a) * share; }

// The plain reference: every sample by itself, in floating point.
class Reference {
 public:
  Reference(const Layout& layout, const Source& source, PixelSize from, const GlassTarget& to)
      : layout_(layout), source_(source), from_(from), to_(to) {}

  // The value of a channel for a pixel of the glass.
  [[nodiscard]] double at(int channel, int x, int y) const {
    const Channel& c = layout_.channels[channel];
    const int samples = samplesOf(from_.width, c.xStep);
    const int step = samples == from_.width ? 1 : 2;
    const int group = x / step;
    const double centre = (group + 0.5) * step;
    const double seen = to_.isMirrored ? to_.size.width - centre : centre;
    double ratio = static_cast<double>(from_.width) * step / (to_.size.width * std::min(c.xStep, step));
    int merged = 1;
    int left = samples;
    for (; ratio >= 2 && left >= 2; ratio /= 2, merged *= 2) left /= 2;
    const double place = seen * from_.width / to_.size.width / std::min(c.xStep, step) / merged - 0.5;
    const double position = std::clamp(place, 0.0, left - 1.0);
    const int first = static_cast<int>(position);
    const int second = std::min(first + 1, left - 1);
    return between(merge(channel, first, merged, y), merge(channel, second, merged, y), position - first);
  }

 private:
  [[nodiscard]] double merge(int channel, int index, int count, int y) const {
    double sum = 0;
    for (int i = 0; i < count; ++i) sum += column(channel, index * count + i, y);
    return sum / count;
  }

  [[nodiscard]] double column(int channel, int x, int y) const {
    const int samples = samplesOf(from_.height, layout_.channels[channel].yStep);
    const int step = samples == from_.height ? 1 : 2;
    const double ratio = static_cast<double>(from_.height) / (to_.size.height * step);
    if (ratio > 6) return source_.sample(channel, x, static_cast<int>((y + 0.5) * ratio));
    if (ratio > 2) {
      const int upper = static_cast<int>((y + 0.25) * ratio);
      const int lower = static_cast<int>((y + 0.75) * ratio);
      return between(source_.sample(channel, x, upper), source_.sample(channel, x, lower), 0.5);
    }
    const double position = std::max((y + 0.5) * ratio - 0.5, 0.0);
    const int upper = static_cast<int>(position);
    return between(source_.sample(channel, x, upper), source_.sample(channel, x, upper + 1),
                   position - upper);
  }

  const Layout& layout_;
  const Source& source_;
  PixelSize from_;
  const GlassTarget& to_;
};

// The largest difference from the reference of any pixel of a small glass, or of a grid of pixels of a large
// one.
double largestError(const Layout& layout, PixelSize from, PixelSize to, int gap, bool isMirrored,
                    const Matrix& m) {
  const Source source(layout, from, gap);
  const int stride = to.width * 4 + gap;
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(stride) * to.height, 1);
  const GlassTarget target{pixels.data(), stride, to, isMirrored};
  PictureConverter converter;
  converter.convert(source.picture(m.color), target);
  const Reference reference(layout, source, from, target);
  double worst = 0;
  const int step = to.width > 100 ? 11 : 1;
  for (int y = 0; y < to.height; y += step)
    for (int x = 0; x < to.width; x += step) {
      std::array<double, 3> want{reference.at(0, x, y), reference.at(1, x, y), reference.at(2, x, y)};
      if (!layout.isRgb) want = toRgb(want, m);
      const auto* got = &pixels[static_cast<std::size_t>(y) * stride + 4UL * x];
      for (int i = 0; i < 3; ++i)
        worst = std::max(worst, std::abs(std::clamp(want[i], 0.0, 255.0) - got[2 - i]));
      if (got[3] != 255) worst = 1000;
    }
  return worst;
}

TEST(PictureConverter, EqualsThePlainReference) {
  const PixelSize glasses[] = {{1, 1}, {7, 5}, {16, 9}, {33, 4}, {64, 19}};
  constexpr int kWidest = 200;  // past every step of the library's vector code
  for (const Layout& layout : kLayouts)
    for (int width = 1; width <= kWidest; ++width)
      for (const int height : {1, width <= 33 ? 9 : 2})
        for (const bool isMirrored : {false, true})
          for (PixelSize glass : {PixelSize{width, height}, glasses[width <= 33 ? width % 5 : 4],
                                  glasses[width <= 33 ? (width + height) % 5 : 3]}) {
            const double error =
                largestError(layout, {width, height}, glass, width % 3 * 5, isMirrored, kMatrices[0]);
            EXPECT_LE(error, kRounding)
                << layout.name << ' ' << width << 'x' << height << " to " << glass.width << 'x'
                << glass.height << (isMirrored ? " mirrored" : "");
          }
}

TEST(PictureConverter, EqualsThePlainReferenceAtTheSizesOfCameras) {
  for (const Layout& layout : kLayouts)
    for (const PixelSize size : {PixelSize{1280, 720}, {1921, 1081}})
      for (const PixelSize glass : {PixelSize{426, 240}, {851, 479}})
        EXPECT_LE(largestError(layout, size, glass, 0, true, kMatrices[0]), kRounding)
            << layout.name << ' ' << size.width << " to " << glass.width;
}

TEST(PictureConverter, KnowsTheColorSpaces) {
  for (const Matrix& matrix : kMatrices)
    EXPECT_LE(largestError(kLayouts[0], {32, 32}, {32, 32}, 0, false, matrix), matrix.tolerance)
        << static_cast<int>(matrix.color);
}

TEST(Picture, RefusesMemoryThatIsTooShort) {
  const std::vector<std::uint8_t> bytes(48);  // six pixels by four of packed 4:2:2
  const std::span<const std::uint8_t> all(bytes);
  struct Case {
    PixelFormat format;
    PixelSize size;
    int stride;
    bool isPicture;
  } const cases[] = {
      {PixelFormat::Yuy2, {6, 4}, 0, true},   {PixelFormat::Yuy2, {6, 5}, 0, false},
      {PixelFormat::Yuy2, {6, 4}, 13, false}, {PixelFormat::Yuy2, {6, 4}, 8, false},
      {PixelFormat::I420, {6, 4}, 0, true},   {PixelFormat::I420, {8, 4}, 0, true},
      {PixelFormat::I420, {10, 4}, 0, false}, {PixelFormat::Nv12, {8, 4}, 0, true},
      {PixelFormat::Bgrx, {6, 2}, 0, true},   {PixelFormat::Bgrx, {6, 4}, 0, false},
      {PixelFormat::Mjpeg, {6, 4}, 0, false}, {PixelFormat::Yuy2, {0, 4}, 0, false},
      {PixelFormat::Yuy2, {6, -4}, 0, false}, {PixelFormat::Yuy2, {6, 4}, -12, false},
  };
  for (const Case& c : cases) {
    const PlaneMemory memory{all, c.stride};
    EXPECT_EQ(pictureIn({&memory, 1}, c.format, c.size, YuvColor::Bt601Limited).has_value(), c.isPicture)
        << static_cast<int>(c.format) << ' ' << c.size.width << 'x' << c.size.height << ' ' << c.stride;
  }
}

TEST(Picture, FindsChromaByTheLengthOfItsBlock) {
  const std::vector<std::uint8_t> bytes(128);
  struct Case {
    PixelFormat format;
    PixelSize size;
    int stride;
    std::size_t length;
    std::ptrdiff_t last;  // where the last plane begins
    int chromaStride;
  } const cases[] = {
      {PixelFormat::I420, {10, 4}, 12, 72, 60, 6},  {PixelFormat::I420, {10, 4}, 12, 80, 64, 8},
      {PixelFormat::I420, {10, 3}, 12, 60, 48, 6},  {PixelFormat::I420, {10, 3}, 12, 80, 64, 8},
      {PixelFormat::Nv12, {10, 3}, 12, 60, 36, 12}, {PixelFormat::Nv12, {10, 3}, 12, 72, 48, 12},
  };
  for (const Case& c : cases) {
    const PlaneMemory memory{std::span(bytes).first(c.length), c.stride};
    const auto found = pictureIn({&memory, 1}, c.format, c.size, YuvColor::Bt601Limited);
    ASSERT_TRUE(found) << c.length;
    const Plane last = found->planes[c.format == PixelFormat::I420 ? 2 : 1];
    EXPECT_EQ(last.data - bytes.data(), c.last) << c.length;
    EXPECT_EQ(last.stride, c.chromaStride) << c.length;
  }
  const auto all = std::span(bytes);
  const PlaneMemory luma{all.first(64), 16};
  const PlaneMemory chroma{all.subspan(64, 16), 16};
  const PlaneMemory blocks[] = {luma, chroma, chroma};
  const auto apart = pictureIn(blocks, PixelFormat::I420, {14, 4}, YuvColor::Bt601Limited);
  ASSERT_TRUE(apart);
  EXPECT_EQ(apart->planes[2].stride, 8);
}

TEST(Picture, TellsBlackAndGreenFromAPicture) {
  const PixelSize size{16, 8};
  const auto blankness = [&](PixelFormat format, std::vector<std::uint8_t> quad) {
    std::vector<std::uint8_t> bytes;
    while (bytes.size() < 512) bytes.insert(bytes.end(), quad.begin(), quad.end());
    const PlaneMemory memory{bytes, 0};
    return isBlank(pictureIn({&memory, 1}, format, size, YuvColor::Bt601Limited).value());
  };
  EXPECT_TRUE(blankness(PixelFormat::Yuy2, {16, 128, 16, 128}));
  EXPECT_TRUE(blankness(PixelFormat::Yuy2, {0, 0, 0, 0}));
  EXPECT_TRUE(blankness(PixelFormat::Uyvy, {0, 145, 0, 145}));
  EXPECT_TRUE(blankness(PixelFormat::Bgrx, {0, 135, 0, 0}));
  EXPECT_TRUE(blankness(PixelFormat::Xrgb, {9, 2, 2, 2}));
  EXPECT_FALSE(blankness(PixelFormat::Yuy2, {60, 128, 60, 128}));
  EXPECT_FALSE(blankness(PixelFormat::Bgrx, {90, 90, 90, 0}));
}

}  // namespace
}  // namespace vistrel::camera
