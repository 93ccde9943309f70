#include "linux/camera/PictureConverter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace vistrel::camera {
namespace {

// Each stage rounds once to a whole number, and the color matrices amplify chroma up to twice.
constexpr double kRounding = 7;

struct Channel {
  int block = 0;   // of memory
  int offset = 0;  // of its first sample in a row
  int pitch = 1;   // bytes from a sample to the next
  int xStep = 1;   // pixels that a sample stands for
  int yStep = 1;
};

// Decoded JPEG is planar with a chroma resolution of its own, or without chroma.
enum class Chroma { OfFormat, Own, None };

struct Layout {
  const char* name;
  PixelFormat format;
  bool isRgb;
  std::array<Channel, 3> channels;  // Y, U, V or R, G, B
  Chroma chroma = Chroma::OfFormat;
};

const Layout kLayouts[] = {
    {"I420", PixelFormat::I420, false, {{{0, 0, 1, 1, 1}, {1, 0, 1, 2, 2}, {2, 0, 1, 2, 2}}}},
    {"YV12", PixelFormat::Yv12, false, {{{0, 0, 1, 1, 1}, {2, 0, 1, 2, 2}, {1, 0, 1, 2, 2}}}},
    {"planar 4:2:2",
     PixelFormat::I420,
     false,
     {{{0, 0, 1, 1, 1}, {1, 0, 1, 2, 1}, {2, 0, 1, 2, 1}}},
     Chroma::Own},
    {"planar 4:4:4",
     PixelFormat::I420,
     false,
     {{{0, 0, 1, 1, 1}, {1, 0, 1, 1, 1}, {2, 0, 1, 1, 1}}},
     Chroma::Own},
    {"grey", PixelFormat::I420, false, {{{0, 0, 1, 1, 1}, {1, 0, 1, 1, 1}, {2, 0, 1, 1, 1}}}, Chroma::None},
    {"NV12", PixelFormat::Nv12, false, {{{0, 0, 1, 1, 1}, {1, 0, 2, 2, 2}, {1, 1, 2, 2, 2}}}},
    {"YUY2", PixelFormat::Yuy2, false, {{{0, 0, 2, 1, 1}, {0, 1, 4, 2, 1}, {0, 3, 4, 2, 1}}}},
    {"UYVY", PixelFormat::Uyvy, false, {{{0, 1, 2, 1, 1}, {0, 0, 4, 2, 1}, {0, 2, 4, 2, 1}}}},
    {"BGRX", PixelFormat::Bgrx, true, {{{0, 2, 4, 1, 1}, {0, 1, 4, 1, 1}, {0, 0, 4, 1, 1}}}},
    {"RGBX", PixelFormat::Rgbx, true, {{{0, 0, 4, 1, 1}, {0, 1, 4, 1, 1}, {0, 2, 4, 1, 1}}}},
    {"XRGB", PixelFormat::Xrgb, true, {{{0, 1, 4, 1, 1}, {0, 2, 4, 1, 1}, {0, 3, 4, 1, 1}}}},
    {"XBGR", PixelFormat::Xbgr, true, {{{0, 3, 4, 1, 1}, {0, 2, 4, 1, 1}, {0, 1, 4, 1, 1}}}},
    {"RGB", PixelFormat::Rgb24, true, {{{0, 0, 3, 1, 1}, {0, 1, 3, 1, 1}, {0, 2, 3, 1, 1}}}},
    {"BGR", PixelFormat::Bgr24, true, {{{0, 2, 3, 1, 1}, {0, 1, 3, 1, 1}, {0, 0, 3, 1, 1}}}},
};

int samplesOf(int pixels, int step) { return (pixels + step - 1) / step; }

// A frame of noise, in which a sample taken from the wrong place shows; no byte of slack behind its end.
class Source {
 public:
  Source(const Layout& layout, PixelSize size, int gap) : layout_(layout), size_(size) {
    std::minstd_rand random(static_cast<unsigned>(size.width * 1000 + size.height));
    std::array<int, 3> rowBytes{};
    for (const Channel& c : layout.channels) {
      // Packed rows hold whole pairs of pixels, since their chroma samples do.
      rowBytes[c.block] = std::max(rowBytes[c.block], samplesOf(size.width, c.xStep) * c.pitch);
      rows_[c.block] = samplesOf(size.height, c.yStep);
    }
    for (int i = 0; i < 3 && rows_[i] > 0; ++i) {
      strides_[i] = rowBytes[i] + gap;
      blocks_[i].resize(static_cast<std::size_t>(strides_[i]) * (rows_[i] - 1) + rowBytes[i]);
      for (auto& byte : blocks_[i]) byte = static_cast<std::uint8_t>(random() >> 8);
      if (i > 0 && layout.chroma == Chroma::None) std::fill(blocks_[i].begin(), blocks_[i].end(), 128);
    }
  }

  [[nodiscard]] Picture picture(YuvColor color) const {
    if (layout_.chroma != Chroma::OfFormat) return decoded(color);
    std::vector<PlaneMemory> memory;
    for (int i = 0; i < 3 && rows_[i] > 0; ++i) memory.push_back({blocks_[i], strides_[i]});
    return pictureIn(memory, layout_.format, size_, color).value();
  }

  [[nodiscard]] double sample(int channel, std::ptrdiff_t x, std::ptrdiff_t y) const {
    const Channel& c = layout_.channels[channel];
    x = std::clamp<std::ptrdiff_t>(x, 0, samplesOf(size_.width, c.xStep) - 1);
    y = std::clamp<std::ptrdiff_t>(y, 0, samplesOf(size_.height, c.yStep) - 1);
    return blocks_[c.block][y * strides_[c.block] + c.offset + x * c.pitch];
  }

 private:
  [[nodiscard]] Picture decoded(YuvColor color) const {
    const Channel& chroma = layout_.channels[1];
    Picture result{layout_.format, size_, {samplesOf(size_.width, chroma.xStep), rows_[1]}, {}, color};
    for (int i = 0; i < (layout_.chroma == Chroma::None ? 1 : 3); ++i)
      result.planes[i] = {blocks_[i].data(), strides_[i]};
    return result;
  }

  const Layout& layout_;
  PixelSize size_;
  std::array<int, 3> strides_{};
  std::array<int, 3> rows_{};
  std::array<std::vector<std::uint8_t>, 3> blocks_;
};

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

struct Matrix {
  YuvColor color;
  double tolerance;
  double lumaScale, black, vToRed, uToGreen, vToGreen, uToBlue;
};
// ITU-R BT.601 and BT.709, limited and full range.
const Matrix kMatrices[] = {
    {YuvColor::Bt601Limited, kRounding, 1.164, 16, 1.596, 0.392, 0.813, 2.017},
    {YuvColor::Bt601Full, kRounding, 1, 0, 1.402, 0.344, 0.714, 1.772},
    // The library's factors end at 2.
    {YuvColor::Bt709Limited, kRounding + 127 * 0.112, 1.164, 16, 1.793, 0.213, 0.533, 2.112},
    {YuvColor::Bt709Full, kRounding, 1, 0, 1.575, 0.187, 0.468, 1.856},
};

std::array<double, 3> toRgb(const std::array<double, 3>& yuv, const Matrix& m) {
  const double luma = (yuv[0] - m.black) * m.lumaScale;
  const double u = yuv[1] - 128;
  const double v = yuv[2] - 128;
  return {luma + m.vToRed * v, luma - m.uToGreen * u - m.vToGreen * v, luma + m.uToBlue * u};
}

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
