#include "linux/camera/Picture.h"

#include <algorithm>

#include "linux/camera/VideoMode.h"

namespace vistrel::camera {
namespace {

// Rows of the longest side at four bytes a pixel, with room to spare; what is computed from it is no
// overflow.
constexpr int kLongestStride = 1 << 24;
// Video black is 16; sensors add a little noise to it.
constexpr int kDarkest = 28;
// Memory that was never written reads as green: both chroma samples near zero.
constexpr int kNoChroma = 24;
constexpr int kProbes = 12;

struct PlaneShape {
  int rowBytes = 0;
  int rows = 0;
};

struct Shape {
  int planeCount = 0;
  std::array<PlaneShape, 3> planes;
};

Shape shapeOf(PixelFormat format, PixelSize size) {
  const PixelLayout& layout = layoutOf(format);
  const int halfWidth = (size.width + 1) / 2;
  const int halfHeight = (size.height + 1) / 2;
  Shape shape{layout.planeCount, {{{size.width * layout.bytes, size.height}, {}, {}}}};
  switch (layout.family) {
    case PixelFamily::Planar:
      shape.planes[1] = shape.planes[2] = {halfWidth, halfHeight};
      break;
    case PixelFamily::SemiPlanar:
      shape.planes[1] = {halfWidth * 2, halfHeight};
      break;
    case PixelFamily::Packed:
      shape.planes[0].rowBytes = halfWidth * layout.bytes;
      break;
    case PixelFamily::Rgb:
    case PixelFamily::Compressed:
      break;
  }
  return shape;
}

std::size_t bytesNeeded(PlaneShape plane, int stride) {
  return static_cast<std::size_t>(stride) * (plane.rows - 1) + plane.rowBytes;
}

bool addPlane(Plane& plane, std::span<const std::uint8_t> bytes, int stride, PlaneShape shape) {
  if (stride < shape.rowBytes || bytes.size() < bytesNeeded(shape, stride)) return false;
  plane = {bytes.data(), stride};
  return true;
}

int roundedUp(int value, int step) { return (value + step - 1) / step * step; }

/// Where the planes of one block begin and how far apart their rows are.
struct BlockLayout {
  int lumaStride = 0;
  int lumaRows = 0;
  int chromaStride = 0;

  [[nodiscard]] std::size_t bytes(const Shape& shape) const {
    const std::size_t luma = static_cast<std::size_t>(lumaStride) * lumaRows;
    const std::size_t chroma = static_cast<std::size_t>(chromaStride) * shape.planes[1].rows;
    return luma + chroma * (shape.planeCount - 1);
  }
};

// Chroma rows of one block follow the luma rows, their distance in proportion. Some round that distance, and
// the number of the luma rows, too: the length of the block tells.
BlockLayout layoutIn(const PlaneMemory& block, const Shape& shape) {
  const int luma = block.stride ? block.stride : shape.planes[0].rowBytes;
  const bool isPlanar = shape.planeCount == 3;
  const int inProportion = isPlanar ? (luma + 1) / 2 : luma + luma % 2;
  const BlockLayout rounded{luma, roundedUp(shape.planes[0].rows, 2),
                            isPlanar ? roundedUp(shape.planes[1].rowBytes, 4) : inProportion};
  const bool isRounded = shape.planeCount > 1 && luma % 4 == 0 && block.bytes.size() == rounded.bytes(shape);
  return isRounded ? rounded : BlockLayout{luma, shape.planes[0].rows, inProportion};
}

bool splitBlock(Picture& picture, const PlaneMemory& block, const Shape& shape) {
  const BlockLayout layout = layoutIn(block, shape);
  if (layout.lumaStride < 0) return false;
  auto rest = block.bytes;
  for (int i = 0; i < shape.planeCount; ++i) {
    const int stride = i == 0 ? layout.lumaStride : layout.chromaStride;
    const int rows = i == 0 ? layout.lumaRows : shape.planes[i].rows;
    if (!addPlane(picture.planes[i], rest, stride, shape.planes[i])) return false;
    rest = rest.subspan(std::min(rest.size(), static_cast<std::size_t>(stride) * rows));
  }
  return true;
}

// Some say luma's distance of rows of each plane: the length of a plane's block tells.
bool takeBlocks(Picture& picture, std::span<const PlaneMemory> memory, const Shape& shape) {
  for (int i = 0; i < shape.planeCount; ++i) {
    const PlaneShape plane = shape.planes[i];
    const int stride = memory[i].stride ? memory[i].stride : plane.rowBytes;
    const bool isOfLuma = i > 0 && shape.planeCount == 3 && stride == memory[0].stride;
    if (!addPlane(picture.planes[i], memory[i].bytes, stride, plane) &&
        !(isOfLuma && addPlane(picture.planes[i], memory[i].bytes, (stride + 1) / 2, plane)))
      return false;
  }
  return true;
}

struct Sample {
  int a = 0;  // luma or red
  int b = 0;  // chroma or green
  int c = 0;  // chroma or blue
};

// The three components of the unit that the pixel is in.
Sample sampleInUnit(const Picture& p, std::ptrdiff_t unit, std::ptrdiff_t y) {
  const PixelLayout& layout = layoutOf(p.format);
  const auto* bytes = p.planes[0].data + y * p.planes[0].stride + unit * layout.bytes;
  return {bytes[layout.order[0]], bytes[layout.order[1]], bytes[layout.order[2]]};
}

Sample planarSample(const Picture& p, std::ptrdiff_t x, std::ptrdiff_t y) {
  const int luma = p.planes[0].data[y * p.planes[0].stride + x];
  if (!p.planes[1].data) return {luma, 128, 128};
  const auto cx = x * p.chromaSize.width / p.size.width;
  const auto cy = y * p.chromaSize.height / p.size.height;
  if (p.format == PixelFormat::Nv12) {
    const auto* uv = p.planes[1].data + cy * p.planes[1].stride + 2 * cx;
    return {luma, uv[0], uv[1]};
  }
  return {luma, p.planes[1].data[cy * p.planes[1].stride + cx],
          p.planes[2].data[cy * p.planes[2].stride + cx]};
}

bool isBlankSample(const Picture& p, int x, int y) {
  const PixelFamily family = layoutOf(p.format).family;
  if (family == PixelFamily::Rgb) {
    const Sample rgb = sampleInUnit(p, x, y);
    return rgb.a < kDarkest && rgb.c < kDarkest && (rgb.b < kDarkest || rgb.b > 100);
  }
  const Sample yuv = family == PixelFamily::Packed ? sampleInUnit(p, x / 2, y) : planarSample(p, x, y);
  return yuv.a < kDarkest || (yuv.b < kNoChroma && yuv.c < kNoChroma);
}

}  // namespace

std::optional<Picture> pictureIn(std::span<const PlaneMemory> memory, PixelFormat format, PixelSize size,
                                 YuvColor color) {
  constexpr int kLongestSide = VideoMode::kLongestSide;
  const bool isPossible =
      size.width > 0 && size.height > 0 && size.width <= kLongestSide && size.height <= kLongestSide;
  const auto hasPossibleRows = [](const PlaneMemory& block) {
    return block.stride >= 0 && block.stride <= kLongestStride;
  };
  if (!isPossible || !std::all_of(memory.begin(), memory.end(), hasPossibleRows)) return std::nullopt;
  const Shape shape = shapeOf(format, size);
  if (shape.planeCount == 0 || memory.empty()) return std::nullopt;
  Picture picture{format, size, {(size.width + 1) / 2, (size.height + 1) / 2}, {}, color};
  const bool hasBlocks = shape.planeCount > 1 && memory.size() >= static_cast<std::size_t>(shape.planeCount);
  if (!(hasBlocks ? takeBlocks(picture, memory, shape) : splitBlock(picture, memory[0], shape)))
    return std::nullopt;
  const PixelLayout& layout = layoutOf(format);
  if (layout.family == PixelFamily::Planar) {
    const auto found = picture.planes;
    for (std::size_t i = 0; i < found.size(); ++i) picture.planes[i] = found[layout.order[i]];
    picture.format = PixelFormat::I420;
  }
  return picture;
}

std::size_t rawBytes(PixelFormat format, PixelSize size) {
  std::size_t bytes = 0;
  for (const auto& [rowBytes, rows] : shapeOf(format, size).planes)
    bytes += static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(rows);
  return bytes;
}

bool isBlank(const Picture& picture) {
  for (int j = 0; j < kProbes; ++j)
    for (int i = 0; i < kProbes; ++i) {
      const int x = (2 * i + 1) * picture.size.width / (2 * kProbes);
      const int y = (2 * j + 1) * picture.size.height / (2 * kProbes);
      if (!isBlankSample(picture, x, y)) return false;
    }
  return true;
}

YuvColor decideColor(PixelFormat format, SourceColor source) {
  if (format == PixelFormat::Mjpeg) return YuvColor::Bt601Full;
  const bool isFull = source.range == ColorRange::Full;
  if (source.matrix == ColorMatrix::Bt709) return isFull ? YuvColor::Bt709Full : YuvColor::Bt709Limited;
  return isFull ? YuvColor::Bt601Full : YuvColor::Bt601Limited;
}

}  // namespace vistrel::camera
