#include "stage/camera/RawPicture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>
#include <utility>

namespace vistrel::stage {
namespace {

struct Yuv {
  std::uint8_t y, u, v;
};

std::uint8_t byte(double value) {
  return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
}

/// BT.601, which is what cameras send.
Yuv yuvOf(Color color, bool isFullRange) {
  const double luma = 0.299 * color.red + 0.587 * color.green + 0.114 * color.blue;
  const double blueness = (color.blue - luma) / 1.772;
  const double redness = (color.red - luma) / 1.402;
  if (isFullRange) return {byte(luma), byte(128 + blueness), byte(128 + redness)};
  return {byte(16 + luma * 219 / 255), byte(128 + blueness * 224 / 255), byte(128 + redness * 224 / 255)};
}

/// The bytes of two neighbouring pixels of one color in plane `plane`.
std::array<std::uint8_t, 8> pairOf(PixelFormat format, std::size_t plane, Color c) {
  const Yuv yuv = yuvOf(c, format == PixelFormat::I422Full);
  const std::array<std::uint8_t, 8> luma{yuv.y, yuv.y};
  switch (format) {
    case PixelFormat::Yuy2:
      return {yuv.y, yuv.u, yuv.y, yuv.v};
    case PixelFormat::Uyvy:
      return {yuv.u, yuv.y, yuv.v, yuv.y};
    case PixelFormat::Rgb:
      return {c.red, c.green, c.blue, c.red, c.green, c.blue};
    case PixelFormat::Bgr:
      return {c.blue, c.green, c.red, c.blue, c.green, c.red};
    case PixelFormat::Rgbx:
      return {c.red, c.green, c.blue, 255, c.red, c.green, c.blue, 255};
    case PixelFormat::Bgrx:
      return {c.blue, c.green, c.red, 255, c.blue, c.green, c.red, 255};
    case PixelFormat::Nv12:
      return plane == 0 ? luma : std::array<std::uint8_t, 8>{yuv.u, yuv.v};
    case PixelFormat::Yv12:
      return plane == 0 ? luma : std::array<std::uint8_t, 8>{plane == 1 ? yuv.v : yuv.u};
    case PixelFormat::I420:
    case PixelFormat::I422Full:
      return plane == 0 ? luma : std::array<std::uint8_t, 8>{plane == 1 ? yuv.u : yuv.v};
  }
  std::abort();
}

}  // namespace

std::optional<PixelFormat> pixelFormatFromName(std::string_view name) {
  static constexpr std::array<std::pair<std::string_view, PixelFormat>, 9> kNames{{
      {"yuy2", PixelFormat::Yuy2},
      {"uyvy", PixelFormat::Uyvy},
      {"nv12", PixelFormat::Nv12},
      {"i420", PixelFormat::I420},
      {"yv12", PixelFormat::Yv12},
      {"rgb", PixelFormat::Rgb},
      {"bgr", PixelFormat::Bgr},
      {"rgbx", PixelFormat::Rgbx},
      {"bgrx", PixelFormat::Bgrx},
  }};
  const auto* const found =
      std::find_if(kNames.begin(), kNames.end(), [&](auto& entry) { return entry.first == name; });
  if (found == kNames.end()) return std::nullopt;
  return found->second;
}

std::optional<Transform> transformFromName(std::string_view name) {
  static constexpr std::array<std::string_view, 8> kNames{"none",    "90",        "180",        "270",
                                                          "flipped", "flipped90", "flipped180", "flipped270"};
  const auto* const found = std::find(kNames.begin(), kNames.end(), name);
  if (found == kNames.end()) return std::nullopt;
  return static_cast<Transform>(found - kNames.begin());
}

RawPicture::RawPicture(PixelFormat format, int width, int height, Transform transform)
    : format_(format), width_(width & ~1), height_(height & ~1), transform_(transform) {
  switch (format) {
    case PixelFormat::Yuy2:
    case PixelFormat::Uyvy:
      addPlane(4, 1);
      break;
    case PixelFormat::Rgb:
    case PixelFormat::Bgr:
      addPlane(6, 1);
      break;
    case PixelFormat::Rgbx:
    case PixelFormat::Bgrx:
      addPlane(8, 1);
      break;
    case PixelFormat::Nv12:
      addPlane(2, 1), addPlane(2, 2);
      break;
    case PixelFormat::I420:
    case PixelFormat::Yv12:
      addPlane(2, 1), addPlane(1, 2), addPlane(1, 2);
      break;
    case PixelFormat::I422Full:
      addPlane(2, 1), addPlane(1, 1), addPlane(1, 1);
      break;
  }
}

void RawPicture::addPlane(int bytesPerPair, int linesPerRow) {
  const int stride = width_ / 2 * bytesPerPair;
  planes_.push_back({bytes_.size(), stride, bytesPerPair, linesPerRow});
  bytes_.resize(bytes_.size() + std::size_t(stride) * (height_ / linesPerRow));
}

std::uint8_t* RawPicture::line(int plane, int y) {
  return bytes_.data() + planes_[plane].offset + std::size_t(planes_[plane].stride) * y;
}

Area RawPicture::inMemory(Area area) const {
  int width = this->width();
  int height = this->height();
  if (transform_ >= Transform::Flipped) area = {width - area.right, area.top, width - area.left, area.bottom};
  for (int turn = 0; turn < quarterTurns(); ++turn) {
    area = {area.top, width - area.right, area.bottom, width - area.left};
    std::swap(width, height);
  }
  return area;
}

void RawPicture::fill(Area upright, Color color) {
  const Area area = inMemory(upright);
  for (std::size_t index = 0; index < planes_.size(); ++index) {
    const Plane& plane = planes_[index];
    const auto pair = pairOf(format_, index, color);
    const int first = area.top / plane.linesPerRow;
    const int start = area.left / 2 * plane.bytesPerPair;
    const int length = area.right / 2 * plane.bytesPerPair - start;
    std::uint8_t* const model = line(static_cast<int>(index), first) + start;
    for (int at = 0; at < length; at += plane.bytesPerPair)
      std::memcpy(model + at, pair.data(), plane.bytesPerPair);
    for (int y = first + 1; y < area.bottom / plane.linesPerRow; ++y)
      std::memcpy(line(static_cast<int>(index), y) + start, model, length);
  }
}

void RawPicture::roughen(int lines, int amount) {
  std::minstd_rand random(7);  // NOLINT(bugprone-random-generator-seed): the same picture each time
  for (int y = 0; y < lines; ++y) {
    std::uint8_t* const row = line(0, y);
    for (int x = 0; x < planes_.front().stride; ++x) {
      const int change = static_cast<int>(random() % (2 * amount + 1)) - amount;
      row[x] = static_cast<std::uint8_t>(std::clamp(row[x] + change, 0, 255));
    }
  }
}

}  // namespace vistrel::stage
