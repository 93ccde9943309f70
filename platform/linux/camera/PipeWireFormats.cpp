#include "linux/camera/PipeWireFormats.h"

#include <spa/buffer/meta.h>
#include <spa/param/buffers.h>
#include <spa/param/format.h>
#include <spa/param/param.h>
#include <spa/param/video/format-utils.h>
#include <spa/pod/iter.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <utility>

namespace vistrel::camera {
namespace {

// One frame is on the glass, one arrives and the camera fills others.
constexpr int kBuffers = 4;
constexpr int kFewestBuffers = 2;
constexpr int kMostBuffers = 16;
// What no camera offers, so that one that lies costs nothing.
constexpr std::uint32_t kMostValues = 256;

constexpr std::pair<std::uint32_t, PixelFormat> kFormats[] = {
    {SPA_VIDEO_FORMAT_I420, PixelFormat::I420}, {SPA_VIDEO_FORMAT_YV12, PixelFormat::Yv12},
    {SPA_VIDEO_FORMAT_NV12, PixelFormat::Nv12}, {SPA_VIDEO_FORMAT_YUY2, PixelFormat::Yuy2},
    {SPA_VIDEO_FORMAT_UYVY, PixelFormat::Uyvy}, {SPA_VIDEO_FORMAT_BGRx, PixelFormat::Bgrx},
    {SPA_VIDEO_FORMAT_BGRA, PixelFormat::Bgrx}, {SPA_VIDEO_FORMAT_RGBx, PixelFormat::Rgbx},
    {SPA_VIDEO_FORMAT_RGBA, PixelFormat::Rgbx}, {SPA_VIDEO_FORMAT_xRGB, PixelFormat::Xrgb},
    {SPA_VIDEO_FORMAT_ARGB, PixelFormat::Xrgb}, {SPA_VIDEO_FORMAT_xBGR, PixelFormat::Xbgr},
    {SPA_VIDEO_FORMAT_ABGR, PixelFormat::Xbgr}, {SPA_VIDEO_FORMAT_BGR, PixelFormat::Bgr24},
    {SPA_VIDEO_FORMAT_RGB, PixelFormat::Rgb24},
};

std::optional<PixelFormat> formatOf(std::uint32_t native) {
  const auto* found = std::find_if(std::begin(kFormats), std::end(kFormats),
                                   [native](const auto& known) { return known.first == native; });
  return found == std::end(kFormats) ? std::nullopt : std::optional(found->second);
}

// The values of a property: of a list without the default in front of it, of a range with both ends after it.
struct Values {
  const std::uint8_t* first = nullptr;
  std::uint32_t count = 0;
  std::uint32_t size = 0;
  std::uint32_t choice = SPA_CHOICE_None;
  template <class T>
  [[nodiscard]] T at(std::uint32_t index) const {
    T value;
    memcpy(&value, first + static_cast<std::size_t>(index) * size, sizeof value);
    return value;
  }
};

// A choice that is too short for its own head would seem to hold millions of values.
bool isWhole(const spa_pod& pod) {
  return SPA_POD_TYPE(&pod) != SPA_TYPE_Choice ||
         (SPA_POD_BODY_SIZE(&pod) >= sizeof(spa_pod_choice_body) && SPA_POD_CHOICE_VALUE_SIZE(&pod) > 0);
}

Values valuesOf(const spa_pod* object, std::uint32_t key, std::uint32_t type, std::uint32_t size) {
  const auto* property = spa_pod_find_prop(object, nullptr, key);
  if (!property || !isWhole(property->value)) return {};
  Values values;
  const spa_pod* child = spa_pod_get_values(&property->value, &values.count, &values.choice);
  if (child->type != type || child->size < size || values.count == 0) return {};
  values.first = static_cast<const std::uint8_t*>(SPA_POD_BODY_CONST(child));
  values.size = child->size;
  if (values.choice != SPA_CHOICE_None && values.count > 1) {
    values.first += values.size;
    --values.count;
  }
  values.count = std::min(values.count, kMostValues);
  return values;
}

// Of a property with one value only. The library's own reading takes any number for one of its enumerators.
template <class T>
std::optional<T> valueOf(const spa_pod* object, std::uint32_t key, std::uint32_t type) {
  const Values values = valuesOf(object, key, type, sizeof(T));
  return values.count == 1 ? std::optional(values.at<T>(0)) : std::nullopt;
}

PixelSize sizeOf(spa_rectangle r) { return {static_cast<int>(r.width), static_cast<int>(r.height)}; }

bool isRange(const Values& values) {
  return (values.choice == SPA_CHOICE_Range || values.choice == SPA_CHOICE_Step) && values.count >= 2;
}

void readRates(const spa_pod* offer, VideoMode& mode) {
  const Values rates = valuesOf(offer, SPA_FORMAT_VIDEO_framerate, SPA_TYPE_Fraction, sizeof(spa_fraction));
  mode.isRateRange = isRange(rates);
  const std::uint32_t count = mode.isRateRange ? 2 : rates.count;
  for (std::uint32_t i = 0; i < count; ++i) {
    const auto rate = rates.at<spa_fraction>(i);
    if (rate.num > 0 || mode.isRateRange) mode.rates.push_back({rate.num, rate.denom});
  }
}

// PipeWire's V4L2 plugin gives the largest size in the place of the step.
PixelSize stepWithin(PixelSize largest, PixelSize step) { return step == largest ? PixelSize{1, 1} : step; }

void appendSizes(const spa_pod* offer, const VideoMode& pattern, std::vector<VideoMode>& modes) {
  const Values sizes = valuesOf(offer, SPA_FORMAT_VIDEO_size, SPA_TYPE_Rectangle, sizeof(spa_rectangle));
  VideoMode mode = pattern;
  const auto append = [&](PixelSize smallest, PixelSize largest) {
    mode.smallest = smallest;
    mode.largest = largest;
    if (modes.size() < kMostModes && mode.limitToPossible()) modes.push_back(mode);
  };
  if (isRange(sizes)) {
    const PixelSize largest = sizeOf(sizes.at<spa_rectangle>(1));
    if (sizes.count >= 3) mode.step = stepWithin(largest, sizeOf(sizes.at<spa_rectangle>(2)));
    return append(sizeOf(sizes.at<spa_rectangle>(0)), largest);
  }
  for (std::uint32_t i = 0; i < sizes.count; ++i) {
    const PixelSize size = sizeOf(sizes.at<spa_rectangle>(i));
    append(size, size);
  }
}

// Lines that are woven already show an interlaced picture well enough.
bool comesInHalves(const spa_pod* format) {
  const auto mode = valueOf<std::uint32_t>(format, SPA_FORMAT_VIDEO_interlaceMode, SPA_TYPE_Id);
  return mode && *mode > SPA_VIDEO_INTERLACE_MODE_MIXED;
}

SourceColor colorOf(const spa_pod* format) {
  const auto range = valueOf<std::uint32_t>(format, SPA_FORMAT_VIDEO_colorRange, SPA_TYPE_Id);
  const auto matrix = valueOf<std::uint32_t>(format, SPA_FORMAT_VIDEO_colorMatrix, SPA_TYPE_Id);
  SourceColor color;
  if (range == SPA_VIDEO_COLOR_RANGE_0_255) color.range = ColorRange::Full;
  if (range == SPA_VIDEO_COLOR_RANGE_16_235) color.range = ColorRange::Limited;
  if (matrix == SPA_VIDEO_COLOR_MATRIX_BT709) color.matrix = ColorMatrix::Bt709;
  if (matrix == SPA_VIDEO_COLOR_MATRIX_BT601) color.matrix = ColorMatrix::Bt601;
  return color;
}

// What undoes each SPA_META_TRANSFORMATION_…, in the order of their values: a flip of left and right or none,
// then that many quarter turns to the left.
constexpr std::array<Orientation, 8> kOrientations = {{
    {false, false, false},  // none
    {true, true, false},    // 90
    {false, true, true},    // 180
    {true, false, true},    // 270
    {false, true, false},   // flipped
    {true, false, false},   // flipped, 90
    {false, false, true},   // flipped, 180
    {true, true, true},     // flipped, 270
}};

const spa_pod* metaOffer(spa_pod_builder& builder, spa_meta_type type, int size) {
  spa_pod_frame object;
  spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta);
  spa_pod_builder_prop(&builder, SPA_PARAM_META_type, 0);
  spa_pod_builder_id(&builder, type);
  spa_pod_builder_prop(&builder, SPA_PARAM_META_size, 0);
  spa_pod_builder_int(&builder, size);
  return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

}  // namespace

void appendModes(const spa_pod* offer, std::vector<VideoMode>& modes) {
  std::uint32_t type = 0;
  std::uint32_t subtype = 0;
  if (!offer || spa_format_parse(offer, &type, &subtype) < 0 || type != SPA_MEDIA_TYPE_video) return;
  VideoMode mode;
  readRates(offer, mode);
  if (subtype == SPA_MEDIA_SUBTYPE_mjpg) {
    mode.format = PixelFormat::Mjpeg;
    appendSizes(offer, mode, modes);
  }
  if (subtype != SPA_MEDIA_SUBTYPE_raw) return;
  const Values formats = valuesOf(offer, SPA_FORMAT_VIDEO_format, SPA_TYPE_Id, sizeof(std::uint32_t));
  for (std::uint32_t i = 0; i < formats.count; ++i) {
    mode.nativeFormat = formats.at<std::uint32_t>(i);
    const auto format = formatOf(mode.nativeFormat);
    if (!format) continue;
    mode.format = *format;
    appendSizes(offer, mode, modes);
  }
}

const spa_pod* offerOf(spa_pod_builder& builder, const ModeChoice& choice) {
  const bool isJpeg = choice.format == PixelFormat::Mjpeg;
  spa_pod_frame frame;
  spa_pod_builder_push_object(&builder, &frame, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
  spa_pod_builder_prop(&builder, SPA_FORMAT_mediaType, 0);
  spa_pod_builder_id(&builder, SPA_MEDIA_TYPE_video);
  spa_pod_builder_prop(&builder, SPA_FORMAT_mediaSubtype, 0);
  spa_pod_builder_id(&builder, isJpeg ? SPA_MEDIA_SUBTYPE_mjpg : SPA_MEDIA_SUBTYPE_raw);
  if (!isJpeg) {
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_format, 0);
    spa_pod_builder_id(&builder, choice.nativeFormat);
  }
  spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_size, 0);
  spa_pod_builder_rectangle(&builder, static_cast<std::uint32_t>(choice.size.width),
                            static_cast<std::uint32_t>(choice.size.height));
  if (choice.rate) {
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_framerate, 0);
    spa_pod_builder_fraction(&builder, choice.rate->numerator, choice.rate->denominator);
  }
  return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &frame));
}

std::optional<AgreedFormat> agreedFormat(const spa_pod* format) {
  std::uint32_t type = 0;
  std::uint32_t subtype = 0;
  if (!format || spa_format_parse(format, &type, &subtype) < 0 || type != SPA_MEDIA_TYPE_video)
    return std::nullopt;
  const auto size = valueOf<spa_rectangle>(format, SPA_FORMAT_VIDEO_size, SPA_TYPE_Rectangle);
  if (!size || comesInHalves(format)) return std::nullopt;
  if (subtype == SPA_MEDIA_SUBTYPE_mjpg) {
    return AgreedFormat{PixelFormat::Mjpeg, sizeOf(*size), decideColor(PixelFormat::Mjpeg, {})};
  }
  const auto native = valueOf<std::uint32_t>(format, SPA_FORMAT_VIDEO_format, SPA_TYPE_Id);
  const auto pixels = native && subtype == SPA_MEDIA_SUBTYPE_raw ? formatOf(*native) : std::nullopt;
  if (!pixels) return std::nullopt;
  return AgreedFormat{*pixels, sizeOf(*size), decideColor(*pixels, colorOf(format))};
}

const spa_pod* bufferOffer(spa_pod_builder& builder) {
  spa_pod_frame object;
  spa_pod_frame choice;
  spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers);
  spa_pod_builder_prop(&builder, SPA_PARAM_BUFFERS_buffers, 0);
  spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Range, 0);
  for (const int count : {kBuffers, kFewestBuffers, kMostBuffers}) spa_pod_builder_int(&builder, count);
  spa_pod_builder_pop(&builder, &choice);
  spa_pod_builder_prop(&builder, SPA_PARAM_BUFFERS_dataType, 0);
  spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Flags, 0);
  spa_pod_builder_int(&builder, (1 << SPA_DATA_MemPtr) | (1 << SPA_DATA_MemFd) | (1 << SPA_DATA_DmaBuf));
  spa_pod_builder_pop(&builder, &choice);
  return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

const spa_pod* headerOffer(spa_pod_builder& builder) {
  return metaOffer(builder, SPA_META_Header, sizeof(spa_meta_header));
}

const spa_pod* transformOffer(spa_pod_builder& builder) {
  return metaOffer(builder, SPA_META_VideoTransform, sizeof(spa_meta_videotransform));
}

Orientation orientationOf(const spa_buffer& buffer) {
  const auto* meta = static_cast<const spa_meta_videotransform*>(
      spa_buffer_find_meta_data(&buffer, SPA_META_VideoTransform, sizeof(spa_meta_videotransform)));
  return meta && meta->transform < kOrientations.size() ? kOrientations[meta->transform] : Orientation{};
}

}  // namespace vistrel::camera
