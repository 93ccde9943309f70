#include "linux/camera/PictureConverter.h"

#include <libyuv.h>

#include <algorithm>

namespace vistrel::capture {
namespace {

// Rows that are converted before they are mirrored: few enough to stay in the first cache, even for 4:2:0.
constexpr int kBandRows = 8;

const std::uint8_t* rowOf(Plane plane, std::int64_t index) { return plane.data + index * plane.stride; }

std::uint8_t* rowOf(const GlassTarget& target, std::int64_t index) {
  return target.pixels + index * target.stride;
}

int half(int value) { return (value + 1) / 2; }

const libyuv::YuvConstants* constantsOf(YuvColour colour) {
  switch (colour) {
    case YuvColour::Bt601Full:
      return &libyuv::kYuvJPEGConstants;
    case YuvColour::Bt709Limited:
      return &libyuv::kYuvH709Constants;
    case YuvColour::Bt709Full:
      return &libyuv::kYuvF709Constants;
    default:
      return &libyuv::kYuvI601Constants;
  }
}

bool isRgb(PixelFormat format) { return format >= PixelFormat::Bgrx; }
bool isRgb24(PixelFormat format) { return format == PixelFormat::Bgr24 || format == PixelFormat::Rgb24; }
bool isPacked(PixelFormat format) { return format == PixelFormat::Yuy2 || format == PixelFormat::Uyvy; }

struct ChromaShift {
  bool isHalfWide = false;
  bool isHalfHigh = false;
};

ChromaShift shiftOf(const Picture& picture) {
  return {picture.chromaSize.width < picture.size.width, picture.chromaSize.height < picture.size.height};
}

// The chroma resolution at the glass: the source's own subsampling, where the painter knows it.
PixelSize chromaAtGlass(const Picture& picture, PixelSize glass) {
  const ChromaShift shift = shiftOf(picture);
  if (!shift.isHalfWide) return glass;
  return {half(glass.width), shift.isHalfHigh ? half(glass.height) : glass.height};
}

void paintRows(const Picture& p, int first, int count, std::uint8_t* out, int stride) {
  const auto* constants = constantsOf(p.colour);
  const auto* luma = rowOf(p.planes[0], first);
  const int width = p.size.width;
  if (!p.planes[1].data) {
    libyuv::I400ToARGBMatrix(luma, p.planes[0].stride, out, stride, constants, width, count);
    return;
  }
  const ChromaShift shift = shiftOf(p);
  const int chromaRow = shift.isHalfHigh ? first / 2 : first;
  const auto* u = rowOf(p.planes[1], chromaRow);
  if (p.format == PixelFormat::Nv12) {
    libyuv::NV12ToARGBMatrix(luma, p.planes[0].stride, u, p.planes[1].stride, out, stride, constants, width,
                             count);
    return;
  }
  const auto convert = shift.isHalfHigh   ? libyuv::I420ToARGBMatrix
                       : shift.isHalfWide ? libyuv::I422ToARGBMatrix
                                          : libyuv::I444ToARGBMatrix;
  convert(luma, p.planes[0].stride, u, p.planes[1].stride, rowOf(p.planes[2], chromaRow), p.planes[2].stride,
          out, stride, constants, width, count);
}

bool fitsPainter(const Picture& picture, PixelSize glass) {
  return picture.size == glass &&
         (!picture.planes[1].data || picture.chromaSize == chromaAtGlass(picture, glass));
}

// Brings the bytes of a row into the glass's order. Works in place.
void reorder(PixelFormat format, std::uint8_t* row, int width) {
  switch (format) {
    case PixelFormat::Rgbx:
      libyuv::ABGRToARGB(row, 0, row, 0, width, 1);
      break;
    case PixelFormat::Xrgb:
      libyuv::BGRAToARGB(row, 0, row, 0, width, 1);
      break;
    case PixelFormat::Xbgr:
      libyuv::RGBAToARGB(row, 0, row, 0, width, 1);
      break;
    default:
      break;
  }
  for (int i = 0; i < width; ++i) row[4 * i + 3] = 255;
}

void splitPacked(const Picture& p, std::uint8_t* y, std::uint8_t* u, std::uint8_t* v, bool isHalfHigh) {
  const int w = p.size.width;
  const int c = half(w);
  const auto* in = p.planes[0].data;
  const bool isYuy2 = p.format == PixelFormat::Yuy2;
  const auto split = isHalfHigh ? (isYuy2 ? libyuv::YUY2ToI420 : libyuv::UYVYToI420)
                                : (isYuy2 ? libyuv::YUY2ToI422 : libyuv::UYVYToI422);
  split(in, p.planes[0].stride, y, w, u, c, v, c, w, p.size.height);
}

}  // namespace

void PictureConverter::convert(const Picture& picture, const GlassTarget& target) {
  if (isRgb(picture.format)) return paintRgb(toRgb32(picture, target.size), target);
  const Picture planar = isPacked(picture.format) ? toPlanar(picture, target.size) : picture;
  paintYuv(fitsPainter(planar, target.size) ? planar : scaled(planar, target.size), target);
}

// Packed 4:2:2: after a strong reduction of the rows that are left are split as they are; otherwise chroma is
// averaged over two rows while it is split, unless the glass shows every row.
Picture PictureConverter::toPlanar(const Picture& picture, PixelSize glass) {
  Picture packed = picture;
  const int rowBytes = half(picture.size.width) * 4;
  const bool isStrong = isStrongReduction(picture.size.height, glass.height);
  if (isStrong) {
    auto* rows = rows_.take(static_cast<std::size_t>(rowBytes) * glass.height);
    reduceRows(picture.planes[0], picture.size.height, rowBytes, rows, rowBytes, glass.height);
    packed.planes[0] = {rows, rowBytes};
    packed.size.height = glass.height;
  }
  const bool isHalfHigh = !isStrong && picture.size.height > glass.height;
  const PixelSize luma = packed.size;
  const PixelSize chroma{half(luma.width), isHalfHigh ? half(luma.height) : luma.height};
  const auto lumaBytes = static_cast<std::size_t>(luma.width) * luma.height;
  const auto chromaBytes = static_cast<std::size_t>(chroma.width) * chroma.height;
  auto* y = planar_.take(lumaBytes + 2 * chromaBytes);
  auto* u = y + lumaBytes;
  auto* v = u + chromaBytes;
  splitPacked(packed, y, u, v, isHalfHigh);
  return {PixelFormat::I420,
          luma,
          chroma,
          {{{y, luma.width}, {u, chroma.width}, {v, chroma.width}}},
          picture.colour};
}

Picture PictureConverter::scaled(const Picture& picture, PixelSize glass) {
  if (picture.format == PixelFormat::Nv12) return scaledSemiPlanar(picture, glass);
  const bool isGrey = !picture.planes[1].data;
  const PixelSize chroma = chromaAtGlass(picture, glass);
  const auto lumaBytes = static_cast<std::size_t>(glass.width) * glass.height;
  const auto chromaBytes = static_cast<std::size_t>(chroma.width) * chroma.height;
  auto* y = scaled_.take(lumaBytes + 2 * chromaBytes);
  scaler_.scale(picture.planes[0], picture.size, y, glass.width, glass);
  Picture result{PixelFormat::I420, glass, chroma, {{{y, glass.width}, {}, {}}}, picture.colour};
  for (int i = 1; i < 3 && !isGrey; ++i) {
    auto* out = y + lumaBytes + (i - 1) * chromaBytes;
    scaler_.scale(picture.planes[i], picture.chromaSize, out, chroma.width, chroma);
    result.planes[i] = {out, chroma.width};
  }
  return result;
}

Picture PictureConverter::scaledSemiPlanar(const Picture& picture, PixelSize glass) {
  const PixelSize chroma{half(glass.width), half(glass.height)};
  const int uvStride = chroma.width * 2;
  const auto lumaBytes = static_cast<std::size_t>(glass.width) * glass.height;
  auto* y = scaled_.take(lumaBytes + static_cast<std::size_t>(uvStride) * chroma.height);
  auto* uv = y + lumaBytes;
  scaler_.scale(picture.planes[0], picture.size, y, glass.width, glass);
  Plane source = picture.planes[1];
  PixelSize from = picture.chromaSize;
  if (isStrongReduction(from.height, chroma.height)) {
    auto* rows = rows_.take(static_cast<std::size_t>(from.width) * 2 * chroma.height);
    reduceRows(source, from.height, from.width * 2, rows, from.width * 2, chroma.height);
    source = {rows, from.width * 2};
    from.height = chroma.height;
  }
  libyuv::UVScale(source.data, source.stride, from.width, from.height, uv, uvStride, chroma.width,
                  chroma.height, libyuv::kFilterBox);
  return {PixelFormat::Nv12, glass, chroma, {{{y, glass.width}, {uv, uvStride}, {}}}, picture.colour};
}

void PictureConverter::paintYuv(const Picture& picture, const GlassTarget& target) {
  const PixelSize size = target.size;
  if (!target.isMirrored) return paintRows(picture, 0, size.height, target.pixels, target.stride);
  const int stride = size.width * 4;
  auto* band = band_.take(static_cast<std::size_t>(stride) * kBandRows);
  for (int y = 0; y < size.height; y += kBandRows) {
    const int rows = std::min(kBandRows, size.height - y);
    paintRows(picture, y, rows, band, stride);
    libyuv::ARGBMirror(band, stride, rowOf(target, y), target.stride, size.width, rows);
  }
}

Picture PictureConverter::toRgb32(const Picture& picture, PixelSize glass) {
  Picture source = picture;
  const int rowBytes = source.size.width * (isRgb24(source.format) ? 3 : 4);
  if (isStrongReduction(source.size.height, glass.height)) {
    auto* rows = rows_.take(static_cast<std::size_t>(rowBytes) * glass.height);
    reduceRows(source.planes[0], source.size.height, rowBytes, rows, rowBytes, glass.height);
    source.planes[0] = {rows, rowBytes};
    source.size.height = glass.height;
  }
  if (isRgb24(source.format)) {
    const int stride = source.size.width * 4;
    auto* wide = planar_.take(static_cast<std::size_t>(stride) * source.size.height);
    const auto widen = source.format == PixelFormat::Bgr24 ? libyuv::RGB24ToARGB : libyuv::RAWToARGB;
    widen(source.planes[0].data, source.planes[0].stride, wide, stride, source.size.width,
          source.size.height);
    source.planes[0] = {wide, stride};
    source.format = PixelFormat::Bgrx;
  }
  if (source.size == glass) return source;
  auto* out = scaled_.take(static_cast<std::size_t>(glass.width) * 4 * glass.height);
  libyuv::ARGBScale(source.planes[0].data, source.planes[0].stride, source.size.width, source.size.height,
                    out, glass.width * 4, glass.width, glass.height, libyuv::kFilterBox);
  source.planes[0] = {out, glass.width * 4};
  source.size = glass;
  return source;
}

void PictureConverter::paintRgb(const Picture& picture, const GlassTarget& target) {
  const auto move = target.isMirrored ? libyuv::ARGBMirror : libyuv::ARGBCopy;
  for (int y = 0; y < target.size.height; ++y) {
    move(rowOf(picture.planes[0], y), 0, rowOf(target, y), 0, target.size.width, 1);
    reorder(picture.format, rowOf(target, y), target.size.width);
  }
}

}  // namespace vistrel::capture
