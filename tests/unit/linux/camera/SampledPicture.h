#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <vector>

#include "linux/camera/Picture.h"

namespace vistrel::camera {

// Each stage rounds once to a whole number, and the color matrices amplify chroma up to twice.
inline constexpr double kRounding = 7;

struct Channel {
  int block = 0;   // of memory
  int offset = 0;  // of its first sample in a row
  int pitch = 1;   // bytes from a sample to the next
  int xStep = 1;   // pixels that a sample stands for
  int yStep = 1;
};

// Decoded JPEG is planar with a chroma resolution of its own, or without chroma.
enum class Chroma { OfFormat, Own, None };

/// How the samples of a format lie in memory.
struct Layout {
  const char* name;
  PixelFormat format;
  bool isRgb;
  std::array<Channel, 3> channels;  // Y, U, V or R, G, B
  Chroma chroma = Chroma::OfFormat;
};

inline const Layout kLayouts[] = {
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

inline int samplesOf(int pixels, int step) { return (pixels + step - 1) / step; }

/// A frame of noise, in which a sample taken from the wrong place shows; no byte of slack behind its end.
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

  // Replaces the noise by a slope: a pixel's value tells its place in one direction, at its centre.
  void shade(bool isAcross) {
    for (const Channel& c : layout_.channels)
      for (int y = 0; y < samplesOf(size_.height, c.yStep); ++y)
        for (int x = 0; x < samplesOf(size_.width, c.xStep); ++x)
          blocks_[c.block][y * strides_[c.block] + c.offset + x * c.pitch] =
              static_cast<std::uint8_t>(slopeAt(isAcross ? (x + 0.5) * c.xStep : (y + 0.5) * c.yStep));
  }
  static double slopeAt(double pixel) { return 30 + 1.2 * pixel; }

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

struct Matrix {
  YuvColor color;
  double tolerance;
  double lumaScale, black, vToRed, uToGreen, vToGreen, uToBlue;
};
// ITU-R BT.601 and BT.709, limited and full range.
inline const Matrix kMatrices[] = {
    {YuvColor::Bt601Limited, kRounding, 1.164, 16, 1.596, 0.392, 0.813, 2.017},
    {YuvColor::Bt601Full, kRounding, 1, 0, 1.402, 0.344, 0.714, 1.772},
    // The library's factors end at 2.
    {YuvColor::Bt709Limited, kRounding + 127 * 0.112, 1.164, 16, 1.793, 0.213, 0.533, 2.112},
    {YuvColor::Bt709Full, kRounding, 1, 0, 1.575, 0.187, 0.468, 1.856},
};

inline std::array<double, 3> toRgb(const std::array<double, 3>& yuv, const Matrix& m) {
  const double luma = (yuv[0] - m.black) * m.lumaScale;
  const double u = yuv[1] - 128;
  const double v = yuv[2] - 128;
  return {luma + m.vToRed * v, luma - m.uToGreen * u - m.vToGreen * v, luma + m.uToBlue * u};
}

}  // namespace vistrel::camera
