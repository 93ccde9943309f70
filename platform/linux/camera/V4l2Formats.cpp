#include "linux/camera/V4l2Formats.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <optional>
#include <utility>

namespace vistrel::camera {
namespace {

// A driver that never ends its lists must not hang the program.
constexpr std::uint32_t kLongestList = 256;
constexpr PixelSize kWantedSizes[] = {{3840, 2160}, {1920, 1080}, {1280, 720}};

constexpr std::pair<std::uint32_t, PixelFormat> kFormats[] = {
    {V4L2_PIX_FMT_YUV420, PixelFormat::I420}, {V4L2_PIX_FMT_YVU420, PixelFormat::Yv12},
    {V4L2_PIX_FMT_NV12, PixelFormat::Nv12},   {V4L2_PIX_FMT_YUYV, PixelFormat::Yuy2},
    {V4L2_PIX_FMT_UYVY, PixelFormat::Uyvy},   {V4L2_PIX_FMT_XBGR32, PixelFormat::Bgrx},
    {V4L2_PIX_FMT_ABGR32, PixelFormat::Bgrx}, {V4L2_PIX_FMT_BGR32, PixelFormat::Bgrx},
    {V4L2_PIX_FMT_RGBX32, PixelFormat::Rgbx}, {V4L2_PIX_FMT_RGBA32, PixelFormat::Rgbx},
    {V4L2_PIX_FMT_XRGB32, PixelFormat::Xrgb}, {V4L2_PIX_FMT_ARGB32, PixelFormat::Xrgb},
    {V4L2_PIX_FMT_RGB32, PixelFormat::Xrgb},  {V4L2_PIX_FMT_BGRX32, PixelFormat::Xbgr},
    {V4L2_PIX_FMT_BGRA32, PixelFormat::Xbgr}, {V4L2_PIX_FMT_BGR24, PixelFormat::Bgr24},
    {V4L2_PIX_FMT_RGB24, PixelFormat::Rgb24}, {V4L2_PIX_FMT_MJPEG, PixelFormat::Mjpeg},
    {V4L2_PIX_FMT_JPEG, PixelFormat::Mjpeg},
};

std::optional<PixelFormat> formatOf(std::uint32_t code) {
  const auto* found = std::find_if(std::begin(kFormats), std::end(kFormats),
                                   [code](const auto& known) { return known.first == code; });
  return found == std::end(kFormats) ? std::nullopt : std::optional(found->second);
}

PixelSize sizeOf(std::uint32_t width, std::uint32_t height) {
  return {static_cast<int>(width), static_cast<int>(height)};
}

// The driver counts seconds a frame.
FrameRate rateOf(const v4l2_fract& interval) { return {interval.denominator, interval.numerator}; }

void readRates(V4l2System& system, int fd, VideoMode& mode) {
  for (std::uint32_t i = 0; i < kLongestList; ++i) {
    v4l2_frmivalenum interval{};
    interval.index = i;
    interval.pixel_format = mode.nativeFormat;
    interval.width = static_cast<std::uint32_t>(mode.largest.width);
    interval.height = static_cast<std::uint32_t>(mode.largest.height);
    if (system.ioctl(fd, VIDIOC_ENUM_FRAMEINTERVALS, &interval) < 0) return;
    if (interval.type != V4L2_FRMIVAL_TYPE_DISCRETE) {
      mode.isRateRange = true;
      mode.rates = {rateOf(interval.stepwise.max), rateOf(interval.stepwise.min)};
      return;
    }
    mode.rates.push_back(rateOf(interval.discrete));
  }
}

void appendMode(V4l2System& system, int fd, VideoMode mode, std::vector<VideoMode>& modes) {
  if (modes.size() >= kMostModes || !mode.limitToPossible()) return;
  readRates(system, fd, mode);
  modes.push_back(std::move(mode));
}

// A driver tells rates at one size at a time: besides its largest, a range is asked about the sizes that a
// mirror wants, which may well be faster.
void appendRange(V4l2System& system, int fd, VideoMode mode, const v4l2_frmsize_stepwise& range,
                 std::vector<VideoMode>& modes) {
  mode.smallest = sizeOf(range.min_width, range.min_height);
  mode.largest = sizeOf(range.max_width, range.max_height);
  mode.step = sizeOf(range.step_width, range.step_height);
  if (!mode.limitToPossible()) return;
  if (const auto source = sourceSizeOf(system, fd)) mode.limitTo(*source);
  appendMode(system, fd, mode, modes);
  for (const PixelSize size : kWantedSizes) {
    if (!mode.reaches(size) || size == mode.largest) continue;
    VideoMode wanted = mode;
    wanted.smallest = wanted.largest = size;
    appendMode(system, fd, wanted, modes);
  }
}

// An old driver that lists no sizes has the one that is set.
void appendPresentSize(V4l2System& system, int fd, VideoMode mode, std::vector<VideoMode>& modes) {
  v4l2_format format{};
  format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
  if (system.ioctl(fd, VIDIOC_G_FMT, &format) < 0) return;
  mode.smallest = mode.largest = sizeOf(format.fmt.pix.width, format.fmt.pix.height);
  appendMode(system, fd, mode, modes);
}

void appendSizes(V4l2System& system, int fd, VideoMode mode, std::vector<VideoMode>& modes) {
  for (std::uint32_t i = 0; i < kLongestList; ++i) {
    v4l2_frmsizeenum size{};
    size.index = i;
    size.pixel_format = mode.nativeFormat;
    if (system.ioctl(fd, VIDIOC_ENUM_FRAMESIZES, &size) < 0) {
      if (i == 0) appendPresentSize(system, fd, mode, modes);
      return;
    }
    if (size.type == V4L2_FRMSIZE_TYPE_DISCRETE) {
      mode.smallest = mode.largest = sizeOf(size.discrete.width, size.discrete.height);
      appendMode(system, fd, mode, modes);
      continue;
    }
    return appendRange(system, fd, mode, size.stepwise, modes);
  }
}

}  // namespace

// Freeing the buffers that we do not have changes nothing and asks nothing of the hardware; but a device that
// somebody else streams from refuses.
bool isBusy(V4l2System& system, int fd) {
  v4l2_requestbuffers request{};
  request.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
  request.memory = V4L2_MEMORY_MMAP;
  return system.ioctl(fd, VIDIOC_REQBUFS, &request) == -EBUSY;
}

// A source that tells no rectangle, as before a signal came, may still tell its timings.
std::optional<PixelSize> sourceSizeOf(V4l2System& system, int fd) {
  v4l2_selection selection{};
  selection.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
  selection.target = V4L2_SEL_TGT_CROP_DEFAULT;
  if (system.ioctl(fd, VIDIOC_G_SELECTION, &selection) >= 0)
    return sizeOf(selection.r.width, selection.r.height);
  v4l2_dv_timings timings{};
  if (system.ioctl(fd, VIDIOC_G_DV_TIMINGS, &timings) >= 0)
    return sizeOf(timings.bt.width, timings.bt.height);
  return std::nullopt;
}

bool capturesPictures(const v4l2_capability& capability) {
  const bool hasOwn = (capability.capabilities & V4L2_CAP_DEVICE_CAPS) != 0;
  const auto caps = hasOwn ? capability.device_caps : capability.capabilities;
  return (caps & V4L2_CAP_VIDEO_CAPTURE) && (caps & V4L2_CAP_STREAMING);
}

std::vector<VideoMode> modesOf(V4l2System& system, int fd) {
  std::vector<VideoMode> modes;
  for (std::uint32_t i = 0; i < kLongestList; ++i) {
    v4l2_fmtdesc description{};
    description.index = i;
    description.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    if (system.ioctl(fd, VIDIOC_ENUM_FMT, &description) < 0) break;
    const auto format = formatOf(description.pixelformat);
    if (!format) continue;
    VideoMode mode;
    mode.format = *format;
    mode.nativeFormat = description.pixelformat;
    appendSizes(system, fd, mode, modes);
  }
  return modes;
}

SourceColor colorOf(const v4l2_pix_format& format) {
  SourceColor color;
  if (format.quantization == V4L2_QUANTIZATION_FULL_RANGE) color.range = ColorRange::Full;
  const bool isOfJpeg = format.colorspace == V4L2_COLORSPACE_JPEG;
  if (isOfJpeg && format.quantization == V4L2_QUANTIZATION_DEFAULT) color.range = ColorRange::Full;
  if (format.quantization == V4L2_QUANTIZATION_LIM_RANGE) color.range = ColorRange::Limited;
  const bool saysDefault = format.ycbcr_enc == V4L2_YCBCR_ENC_DEFAULT;
  if (format.ycbcr_enc == V4L2_YCBCR_ENC_601) color.matrix = ColorMatrix::Bt601;
  if (format.ycbcr_enc == V4L2_YCBCR_ENC_709 || (saysDefault && format.colorspace == V4L2_COLORSPACE_REC709))
    color.matrix = ColorMatrix::Bt709;
  return color;
}

}  // namespace vistrel::camera
