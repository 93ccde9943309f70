#include "linux/camera/PictureConverter.h"

#include <libyuv.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace vistrel::camera {
namespace {

// Between the rows that are split into one block, so that each starts on a cache line.
constexpr int kAlignment = 64;
constexpr int kBytesPerPixel = 4;

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

/// What is read of one direction of the picture, in pixels: the part that is seen, with neighbours to blend
/// its edges from, in whole steps of every chroma resolution.
struct Stretch {
  static constexpr double kNeighbours = 4;
  static constexpr int kStep = 12;

  Stretch(double start, double length, int pixels)
      : from(length * pixels),
        all(pixels),
        first(std::max(0, static_cast<int>(start * pixels - kNeighbours) / kStep * kStep)),
        last(std::min(pixels, static_cast<int>(std::ceil(start * pixels + from + kNeighbours)))),
        offset(start * pixels - first) {}

  [[nodiscard]] Axis axis(int samples, int step, int to, int toStep) const {
    const int before = first / step;
    const int within = last == all ? samples - before : (last - first + step - 1) / step;
    return {std::min(within, samples - before), from, offset, step, to, toStep};
  }

  double from;
  int all;
  int first;
  int last;
  double offset;
};

// The picture without what lies left of and above a pixel at which a unit and a chroma sample begin.
Picture startingAt(Picture picture, std::ptrdiff_t x, std::ptrdiff_t y) {
  const PixelLayout& layout = layoutOf(picture.format);
  const int pairs = layout.family == PixelFamily::Packed ? 2 : 1;
  const auto skip = [](Plane& plane, std::ptrdiff_t bytes, std::ptrdiff_t rows) {
    if (plane.data) plane.data += rows * plane.stride + bytes;
  };
  skip(picture.planes[0], x / pairs * layout.bytes, y);
  const PixelSize step{stepOf(picture.size.width, picture.chromaSize.width),
                       stepOf(picture.size.height, picture.chromaSize.height)};
  const int bytes = layout.family == PixelFamily::SemiPlanar ? 2 : 1;
  for (std::size_t i = 1; i < picture.planes.size(); ++i)
    skip(picture.planes[i], x / step.width * bytes, y / step.height);
  return picture;
}

GlassTarget fromBelow(GlassTarget target) {
  target.pixels += static_cast<std::ptrdiff_t>(target.stride) * (target.size.height - 1);
  target.stride = -target.stride;
  return target;
}

}  // namespace

// Left and right change places in the mirror, after the picture was turned upright.
void PictureConverter::convert(const Picture& picture, const GlassTarget& target) {
  Orientation turn = picture.orientation;
  GlassTarget stored = target;
  stored.part = turn.inMemory(target.part);
  turn.isFlippedAcross = turn.isFlippedAcross != target.isMirrored;
  if (!turn.isTransposed) {
    stored.isMirrored = turn.isFlippedAcross;
    return paint(picture, turn.isFlippedDown ? fromBelow(stored) : stored);
  }
  stored.size = turn.turned(target.size);
  stored.stride = stored.size.width * kBytesPerPixel;
  stored.pixels = lying_.take(static_cast<std::size_t>(stored.stride) * stored.size.height);
  // To transpose is to flip from below and to turn by a quarter to the right.
  stored.isMirrored = turn.isFlippedDown;
  paint(picture, turn.isFlippedAcross ? stored : fromBelow(stored));
  libyuv::ARGBRotate(stored.pixels, stored.stride, target.pixels, target.stride, stored.size.width,
                     stored.size.height, libyuv::kRotate90);
}

void PictureConverter::paint(const Picture& picture, const GlassTarget& target) {
  const Picture seen = prepare(picture, target);
  for (int y = 0; y < target.size.height; ++y) {
    Rows rows = rowsAt(seen, y);
    for (int i = 0; i < kChannels; ++i)
      if (rows[i]) rows[i] = channels_[i].resampler.apply(rows[i]);
    paintRow(seen, rows, target.pixels + static_cast<std::ptrdiff_t>(y) * target.stride, target.size.width);
  }
}

Picture PictureConverter::prepare(const Picture& picture, const GlassTarget& target) {
  const PixelSize size = picture.size;
  const bool isFull = isRgb(picture.format) || isGrey(picture);
  const PixelSize chroma = isFull                     ? size
                           : isPacked(picture.format) ? PixelSize{half(size.width), size.height}
                                                      : picture.chromaSize;
  const Stretch across(target.part.x, target.part.width, size.width);
  const Stretch down(target.part.y, target.part.height, size.height);
  const Direction direction = target.isMirrored ? Direction::Mirrored : Direction::AsIs;
  for (int i = 0; i < kChannels; ++i) {
    const PixelSize samples = i == 0 ? size : chroma;
    const int step = stepOf(size.width, samples.width);
    auto& channel = channels_[i];
    channel.across = across.axis(samples.width, step, target.size.width, step > 1 ? 2 : 1);
    channel.down = down.axis(samples.height, stepOf(size.height, samples.height), target.size.height, 1);
    channel.resampler.prepare(channel.across, direction);
  }
  return startingAt(picture, across.first, down.first);
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
