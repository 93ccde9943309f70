#include "stage/camera/StreamFormat.h"

#include <cstdlib>
#include <utility>

#include <spa/param/video/format-utils.h>

namespace vistrel::stage {
namespace {

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

}  // namespace

const spa_pod* describe(spa_pod_builder& builder, const Offer& offer) {
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
  return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
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
