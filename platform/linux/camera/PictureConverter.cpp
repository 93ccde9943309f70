#include "linux/camera/PictureConverter.h"

#include <libyuv.h>

#include <array>
#include <cmath>

namespace vistrel::camera {
namespace {

// Between the rows that are split into one block, so that each starts on a cache line.
constexpr int kAlignment = 64;

int half(int value) { return (value + 1) / 2; }

const libyuv::YuvConstants* constantsOf(YuvColor color) {
  switch (color) {
    case YuvColor::Bt601Full:
      return &libyuv::kYuvJPEGConstants;
    case YuvColor::Bt709Limited:
      return &libyuv::kYuvH709Constants;
    case YuvColor::Bt709Full:
      return &libyuv::kYuvF709Constants;
    default:
      return &libyuv::kYuvI601Constants;
  }
}

bool isRgb(PixelFormat format) { return layoutOf(format).family == PixelFamily::Rgb; }
bool isPacked(PixelFormat format) { return layoutOf(format).family == PixelFamily::Packed; }
bool isGrey(const Picture& picture) { return picture.format == PixelFormat::I420 && !picture.planes[1].data; }

// The library's vector code for this overruns its stack where the width is no multiple of its step (libyuv
// 1904).
constexpr int kSplitStep = 32;

void split24(const std::uint8_t* row, const std::array<std::uint8_t*, 4>& places, int width) {
  const int whole = width / kSplitStep * kSplitStep;
  if (whole > 0) libyuv::SplitRGBPlane(row, 0, places[0], 0, places[1], 0, places[2], 0, whole, 1);
  for (int x = whole; x < width; ++x)
    for (int i = 0; i < 3; ++i) places[i][x] = row[3 * x + i];
}

// How many pixels a chroma sample stands for.
int stepOf(int pixels, int samples) {
  return samples > 0 ? static_cast<int>(std::lround(static_cast<double>(pixels) / samples)) : 1;
}

}  // namespace

void PictureConverter::convert(const Picture& picture, const GlassTarget& target) {
  prepare(picture, target);
  for (int y = 0; y < target.size.height; ++y) {
    Rows rows = rowsAt(picture, y);
    for (int i = 0; i < kChannels; ++i)
      if (rows[i]) rows[i] = channels_[i].resampler.apply(rows[i]);
    paintRow(picture, rows, target.pixels + static_cast<std::ptrdiff_t>(y) * target.stride,
             target.size.width);
  }
}

void PictureConverter::prepare(const Picture& picture, const GlassTarget& target) {
  const PixelSize size = picture.size;
  const bool isFull = isRgb(picture.format) || isGrey(picture);
  const PixelSize chroma = isFull                     ? size
                           : isPacked(picture.format) ? PixelSize{half(size.width), size.height}
                                                      : picture.chromaSize;
  const Direction direction = target.isMirrored ? Direction::Mirrored : Direction::AsIs;
  for (int i = 0; i < kChannels; ++i) {
    const PixelSize samples = i == 0 ? size : chroma;
    const int step = stepOf(size.width, samples.width);
    auto& channel = channels_[i];
    channel.across = {samples.width, size.width, step, target.size.width, step > 1 ? 2 : 1};
    channel.down = {samples.height, size.height, stepOf(size.height, samples.height), target.size.height, 1};
    channel.resampler.prepare(channel.across, direction);
  }
}

PictureConverter::Rows PictureConverter::rowsAt(const Picture& picture, int y) {
  if (isRgb(picture.format)) return rgbRows(picture, y);
  if (isPacked(picture.format)) return packedRows(picture, y);
  return layoutOf(picture.format).family == PixelFamily::SemiPlanar ? semiPlanarRows(picture, y)
                                                                    : planarRows(picture, y);
}

PictureConverter::Rows PictureConverter::planarRows(const Picture& picture, int y) {
  Rows rows{};
  for (int i = 0; i < kChannels; ++i) {
    auto& channel = channels_[i];
    if (picture.planes[i].data)
      rows[i] = channel.sampler.row(picture.planes[i], channel.across.samples, channel.down, y);
  }
  return rows;
}

PictureConverter::Rows PictureConverter::semiPlanarRows(const Picture& picture, int y) {
  auto& luma = channels_[0];
  auto& chroma = channels_[1];
  const int width = chroma.across.samples;
  const auto* uv = chroma.sampler.row(picture.planes[1], 2 * width, chroma.down, y);
  const SplitRows split = splitRows(width);
  libyuv::SplitUVPlane(uv, 0, split[1], 0, split[2], 0, width, 1);
  return {luma.sampler.row(picture.planes[0], luma.across.samples, luma.down, y), split[1], split[2]};
}

PictureConverter::Rows PictureConverter::packedRows(const Picture& picture, int y) {
  auto& luma = channels_[0];
  const int width = luma.across.samples;
  const auto* packed = luma.sampler.row(picture.planes[0], half(width) * 4, luma.down, y);
  const SplitRows split = splitRows(width);
  const auto separate = picture.format == PixelFormat::Yuy2 ? libyuv::YUY2ToI422 : libyuv::UYVYToI422;
  separate(packed, 0, split[0], 0, split[1], 0, split[2], 0, width, 1);
  return {split[0], split[1], split[2]};
}

// Red, green and blue, whatever their order in memory: the library splits by place, so it is handed the rows
// in the order of the bytes.
PictureConverter::Rows PictureConverter::rgbRows(const Picture& picture, int y) {
  const PixelLayout& layout = layoutOf(picture.format);
  auto& channel = channels_[0];
  const int width = channel.across.samples;
  const auto* row = channel.sampler.row(picture.planes[0], width * layout.bytes, channel.down, y);
  const SplitRows rows = splitRows(width);
  std::array<std::uint8_t*, 4> places{};
  places.fill(rows[kChannels]);
  for (std::size_t i = 0; i < kChannels; ++i) places[layout.order[i]] = rows[i];
  if (layout.bytes == 3) {
    split24(row, places, width);
  } else {
    libyuv::SplitARGBPlane(row, 0, places[2], 0, places[1], 0, places[0], 0, places[3], 0, width, 1);
  }
  return {rows[0], rows[1], rows[2]};
}

PictureConverter::SplitRows PictureConverter::splitRows(int width) {
  const auto stride = static_cast<std::size_t>(width + kAlignment) / kAlignment * kAlignment;
  auto* memory = split_.take(4 * stride);
  return {memory, memory + stride, memory + 2 * stride, memory + 3 * stride};
}

void PictureConverter::paintRow(const Picture& picture, const Rows& rows, std::uint8_t* out,
                                int width) const {
  const auto* constants = constantsOf(picture.color);
  if (isRgb(picture.format)) {
    libyuv::MergeARGBPlane(rows[0], 0, rows[1], 0, rows[2], 0, nullptr, 0, out, 0, width, 1);
  } else if (isGrey(picture)) {
    libyuv::I400ToARGBMatrix(rows[0], 0, out, 0, constants, width, 1);
  } else {
    const auto convert =
        channels_[1].across.toStep == 1 ? libyuv::I444ToARGBMatrix : libyuv::I422ToARGBMatrix;
    convert(rows[0], 0, rows[1], 0, rows[2], 0, out, 0, constants, width, 1);
  }
}

}  // namespace vistrel::camera
