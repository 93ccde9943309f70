#include "stage/camera/StreamParameters.h"

#include <cstdlib>
#include <limits>
#include <utility>

#include <spa/buffer/meta.h>
#include <spa/param/buffers.h>
#include <spa/param/video/format-utils.h>

namespace vistrel::stage {
namespace {

constexpr int kManyFormats = 2000;

std::uint32_t spaFormat(PixelFormat format) {
  switch (format) {
    case PixelFormat::Yuy2:
      return SPA_VIDEO_FORMAT_YUY2;
    case PixelFormat::Uyvy:
      return SPA_VIDEO_FORMAT_UYVY;
    case PixelFormat::Nv12:
      return SPA_VIDEO_FORMAT_NV12;
    case PixelFormat::I420:
      return SPA_VIDEO_FORMAT_I420;
    case PixelFormat::Yv12:
      return SPA_VIDEO_FORMAT_YV12;
    case PixelFormat::Rgb:
      return SPA_VIDEO_FORMAT_RGB;
    case PixelFormat::Bgr:
      return SPA_VIDEO_FORMAT_BGR;
    case PixelFormat::Rgbx:
      return SPA_VIDEO_FORMAT_RGBx;
    case PixelFormat::Bgrx:
      return SPA_VIDEO_FORMAT_BGRx;
    case PixelFormat::I422Full:
      break;
  }
  std::abort();
}

void addRates(spa_pod_builder& builder, const std::vector<int>& rates) {
  spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_framerate, 0);
  if (rates.size() == 1) {
    spa_pod_builder_fraction(&builder, rates.front(), 1);
    return;
  }
  spa_pod_frame choice{};
  spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Enum, 0);
  spa_pod_builder_fraction(&builder, rates.front(), 1);  // the default stands before the list
  for (const int rate : rates) spa_pod_builder_fraction(&builder, rate, 1);
  spa_pod_builder_pop(&builder, &choice);
}

spa_pod* describe(spa_pod_builder& builder, const Offer& offer) {
  spa_pod_frame object{};
  spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
  spa_pod_builder_prop(&builder, SPA_FORMAT_mediaType, 0);
  spa_pod_builder_id(&builder, SPA_MEDIA_TYPE_video);
  spa_pod_builder_prop(&builder, SPA_FORMAT_mediaSubtype, 0);
  spa_pod_builder_id(&builder, offer.raw ? SPA_MEDIA_SUBTYPE_raw : SPA_MEDIA_SUBTYPE_mjpg);
  if (offer.raw) {
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_format, 0);
    spa_pod_builder_id(&builder, spaFormat(*offer.raw));
  }
  spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_size, 0);
  spa_pod_builder_rectangle(&builder, offer.width, offer.height);
  addRates(builder, offer.rates);
  return static_cast<spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

const spa_pod* describeMeta(spa_pod_builder& builder, spa_meta_type type, std::size_t size) {
  return static_cast<const spa_pod*>(
      spa_pod_builder_add_object(&builder, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type,
                                 SPA_POD_Id(type), SPA_PARAM_META_size, SPA_POD_Int(static_cast<int>(size))));
}

}  // namespace

std::vector<const spa_pod*> describeFormats(spa_pod_builder& builder, const Options& options) {
  std::vector<const spa_pod*> formats;
  for (const Offer& offer : options.offers) {
    spa_pod* const format = describe(builder, offer);
    if (options.evil) spoilOffer(*options.evil, *format);
    formats.push_back(format);
  }
  Offer lie = options.offers.front();
  for (int i = 0; options.evil == Evil::Formats && i < kManyFormats; ++i) {
    lie.width = lie.height = 2 * i + 2;
    formats.push_back(describe(builder, lie));
  }
  for (const int side : {0, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    lie.width = lie.height = side;
    if (options.evil == Evil::HugeFormats) formats.push_back(describe(builder, lie));
  }
  return formats;
}

std::array<const spa_pod*, 3> describeBuffers(spa_pod_builder& builder, const PictureSource& source,
                                              int types) {
  const auto size = static_cast<int>(source.maximumBytes());
  return {
      static_cast<const spa_pod*>(spa_pod_builder_add_object(
          &builder, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers, SPA_PARAM_BUFFERS_buffers,
          SPA_POD_CHOICE_RANGE_Int(8, 2, 32), SPA_PARAM_BUFFERS_blocks, SPA_POD_Int(1),
          SPA_PARAM_BUFFERS_size, SPA_POD_Int(size), SPA_PARAM_BUFFERS_stride, SPA_POD_Int(source.stride()),
          SPA_PARAM_BUFFERS_dataType, SPA_POD_CHOICE_FLAGS_Int(types))),
      describeMeta(builder, SPA_META_Header, sizeof(spa_meta_header)),
      describeMeta(builder, SPA_META_VideoTransform, sizeof(spa_meta_videotransform)),
  };
}

std::optional<ChosenFormat> parseFormat(const spa_pod* format) {
  std::uint32_t type = 0;
  std::uint32_t subtype = 0;
  if (spa_format_parse(format, &type, &subtype) < 0) return std::nullopt;
  if (subtype == SPA_MEDIA_SUBTYPE_mjpg) {
    spa_video_info_mjpg info{};
    if (spa_format_video_mjpg_parse(format, &info) < 0) return std::nullopt;
    return ChosenFormat{std::nullopt, info.size, info.framerate};
  }
  spa_video_info_raw info{};
  if (spa_format_video_raw_parse(format, &info) < 0) return std::nullopt;
  return ChosenFormat{info.format, info.size, info.framerate};
}

bool matches(const Offer& offer, const ChosenFormat& chosen) {
  const bool isSameFormat = offer.raw ? chosen.rawFormat == spaFormat(*offer.raw) : !chosen.rawFormat;
  return isSameFormat && std::cmp_equal(offer.width, chosen.size.width) &&
         std::cmp_equal(offer.height, chosen.size.height);
}

}  // namespace vistrel::stage
