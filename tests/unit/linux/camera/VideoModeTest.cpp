#include "linux/camera/VideoMode.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>
#include <spa/param/format.h>
#include <spa/param/param.h>
#include <spa/param/video/format-utils.h>
#include <spa/pod/builder.h>

#include "linux/camera/Picture.h"
#include "linux/camera/PipeWireFormats.h"
#include "linux/camera/V4l2Formats.h"

namespace vistrel::camera {
namespace {

using enum PixelFormat;

VideoMode mode(PixelFormat format, PixelSize size, std::vector<FrameRate> rates) {
  return {format, 0, size, size, {1, 1}, std::move(rates), false};
}

VideoMode range(PixelFormat format, PixelSize smallest, PixelSize largest, PixelSize step, FrameRate slow,
                FrameRate fast) {
  return {format, 0, smallest, largest, step, {slow, fast}, true};
}

constexpr PixelSize k720{1280, 720};
constexpr PixelSize k1080{1920, 1080};
constexpr PixelSize k2160{3840, 2160};

TEST(VideoMode, ChoosesTheFormatForASize) {
  struct Case {
    const char* name;
    std::vector<VideoMode> modes;
    bool isSupported;
    std::optional<PixelFormat> format;
    double rate;  // 0: the driver does not say
  } const cases[] = {
      {"raw before JPEG at equal rates",
       {mode(Mjpeg, k720, {{30, 1}}), mode(Yuy2, k720, {{30, 1}})},
       true,
       Yuy2,
       30},
      {"29.97 is 30", {mode(Mjpeg, k720, {{30, 1}}), mode(Nv12, k720, {{30000, 1001}})}, true, Nv12, 29.97},
      {"slow raw loses", {mode(Yuy2, k720, {{10, 1}}), mode(Mjpeg, k720, {{30, 1}})}, true, Mjpeg, 30},
      {"30 before 60", {mode(Yuy2, k720, {{60, 1}, {30, 1}, {15, 1}})}, true, Yuy2, 30},
      {"30 before 60 across formats",
       {mode(Yuy2, k720, {{60, 1}}), mode(Mjpeg, k720, {{30, 1}})},
       true,
       Mjpeg,
       30},
      {"the highest without 30",
       {mode(Yuy2, k720, {{15, 1}, {25, 1}}), mode(Mjpeg, k720, {{20, 1}})},
       true,
       Yuy2,
       25},
      {"below 24", {mode(Yuy2, k720, {{10, 1}, {20, 1}})}, false, Yuy2, 20},
      {"24000/1001 is 24", {mode(Yuy2, k720, {{24000, 1001}})}, true, Yuy2, 23.976},
      {"no rates are valid", {mode(Uyvy, k720, {})}, true, Uyvy, 0},
      {"another size", {mode(Yuy2, k1080, {{30, 1}})}, false, std::nullopt, 0},
      {"a range of sizes", {range(Yuy2, {160, 120}, k1080, {16, 8}, {1, 1}, {60, 1})}, true, Yuy2, 30},
      {"a range that steps past it",
       {range(Yuy2, {160, 120}, k1080, {100, 8}, {1, 1}, {60, 1})},
       false,
       {},
       0},
      {"a slow range", {range(Yuy2, {160, 120}, k1080, {1, 1}, {1, 1}, {15, 1})}, false, Yuy2, 15},
      {"nothing", {}, false, std::nullopt, 0},
  };
  for (const Case& c : cases) {
    const auto choice = chooseMode(c.modes, k720);
    EXPECT_EQ(supportsSize(c.modes, k720), c.isSupported) << c.name;
    ASSERT_EQ(choice.has_value(), c.format.has_value()) << c.name;
    if (!choice) continue;
    EXPECT_EQ(choice->format, *c.format) << c.name;
    EXPECT_NEAR(choice->rate ? choice->rate->perSecond() : 0, c.rate, 0.01) << c.name;
  }
}

TEST(VideoMode, ChoosesASizeByItself) {
  struct Case {
    const char* name;
    std::vector<VideoMode> modes;
    PixelSize size;
  } const cases[] = {
      {"the largest up to 1080",
       {mode(Yuy2, {640, 480}, {{30, 1}}), mode(Mjpeg, k1080, {{30, 1}}), mode(Mjpeg, k2160, {{30, 1}})},
       k1080},
      {"that is fluent", {mode(Yuy2, {640, 480}, {{30, 1}}), mode(Yuy2, k1080, {{5, 1}})}, {640, 480}},
      {"else the fastest", {mode(Yuy2, {640, 480}, {{15, 1}}), mode(Yuy2, k720, {{10, 1}})}, {640, 480}},
      {"the larger of equals", {mode(Yuy2, {640, 480}, {{10, 1}}), mode(Yuy2, k720, {{10, 1}})}, k720},
      {"only larger ones", {mode(Yuy2, k2160, {{30, 1}})}, k2160},
      {"a range, cut to 1080", {range(Nv12, {2, 2}, k2160, {2, 2}, {1, 1}, {30, 1})}, k1080},
  };
  for (const Case& c : cases) {
    const auto choice = chooseMode(c.modes);
    ASSERT_TRUE(choice) << c.name;
    EXPECT_EQ(choice->size, c.size) << c.name << ": " << choice->size.width << 'x' << choice->size.height;
  }
}

TEST(Color, IsDecidedByFormatAndSource) {
  EXPECT_EQ(decideColor(Mjpeg, {ColorRange::Limited, ColorMatrix::Bt709}), YuvColor::Bt601Full);
  EXPECT_EQ(decideColor(Yuy2, {}), YuvColor::Bt601Limited);
  EXPECT_EQ(decideColor(Nv12, {ColorRange::Full, ColorMatrix::Unknown}), YuvColor::Bt601Full);
  EXPECT_EQ(decideColor(Nv12, {ColorRange::Unknown, ColorMatrix::Bt709}), YuvColor::Bt709Limited);
}

TEST(Color, IsWhatV4l2SaysOfTheFormat) {
  struct Case {
    std::uint32_t colorspace, encoding, quantization;
    YuvColor color;
  } const cases[] = {
      {V4L2_COLORSPACE_JPEG, 0, V4L2_QUANTIZATION_DEFAULT, YuvColor::Bt601Full},
      {V4L2_COLORSPACE_JPEG, 0, V4L2_QUANTIZATION_LIM_RANGE, YuvColor::Bt601Limited},
      {V4L2_COLORSPACE_SRGB, 0, V4L2_QUANTIZATION_FULL_RANGE, YuvColor::Bt601Full},
      {V4L2_COLORSPACE_REC709, 0, V4L2_QUANTIZATION_DEFAULT, YuvColor::Bt709Limited},
      {V4L2_COLORSPACE_REC709, V4L2_YCBCR_ENC_601, V4L2_QUANTIZATION_DEFAULT, YuvColor::Bt601Limited},
  };
  for (const Case& c : cases) {
    v4l2_pix_format format{};
    format.colorspace = c.colorspace;
    format.ycbcr_enc = c.encoding;
    format.quantization = c.quantization;
    EXPECT_EQ(decideColor(Yuy2, colorOf(format)), c.color) << c.colorspace << ' ' << c.quantization;
  }
}

// An offer as PipeWire's V4L2 cameras make it: one subtype, several formats, sizes and rates.
class Offer {
 public:
  explicit Offer(std::uint32_t subtype) {
    spa_pod_builder_init(&builder_, memory_.data(), memory_.size());
    spa_pod_builder_push_object(&builder_, &frame_, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
    spa_pod_builder_prop(&builder_, SPA_FORMAT_mediaType, 0);
    spa_pod_builder_id(&builder_, SPA_MEDIA_TYPE_video);
    spa_pod_builder_prop(&builder_, SPA_FORMAT_mediaSubtype, 0);
    spa_pod_builder_id(&builder_, subtype);
  }
  template <class Add>
  Offer& choice(std::uint32_t key, std::uint32_t type, Add add) {
    spa_pod_frame choice;
    spa_pod_builder_prop(&builder_, key, 0);
    spa_pod_builder_push_choice(&builder_, &choice, type, 0);
    add(&builder_);
    spa_pod_builder_pop(&builder_, &choice);
    return *this;
  }
  std::vector<VideoMode> modes() {
    std::vector<VideoMode> modes;
    appendModes(static_cast<const spa_pod*>(spa_pod_builder_pop(&builder_, &frame_)), modes);
    return modes;
  }

 private:
  std::array<std::uint8_t, 32768> memory_{};
  spa_pod_builder builder_{};
  spa_pod_frame frame_{};
};

TEST(PipeWireFormats, ReadsListsWithoutTheirDefault) {
  const auto modes =
      Offer(SPA_MEDIA_SUBTYPE_raw)
          .choice(SPA_FORMAT_VIDEO_format, SPA_CHOICE_Enum,
                  [](auto* b) {
                    for (auto f : {SPA_VIDEO_FORMAT_YUY2, SPA_VIDEO_FORMAT_YUY2, SPA_VIDEO_FORMAT_GRAY8})
                      spa_pod_builder_id(b, f);
                  })
          .choice(SPA_FORMAT_VIDEO_size, SPA_CHOICE_Enum,
                  [](auto* b) {
                    for (unsigned w : {640U, 640U, 1280U}) spa_pod_builder_rectangle(b, w, 480);
                  })
          .choice(SPA_FORMAT_VIDEO_framerate, SPA_CHOICE_Enum,
                  [](auto* b) {
                    for (unsigned r : {30U, 30U, 15U}) spa_pod_builder_fraction(b, r, 1);
                  })
          .modes();
  ASSERT_EQ(modes.size(), 2U);
  EXPECT_EQ(modes[1].largest, (PixelSize{1280, 480}));
  EXPECT_EQ(modes[1].nativeFormat, static_cast<std::uint32_t>(SPA_VIDEO_FORMAT_YUY2));
  EXPECT_EQ(modes[1].rates, (std::vector<FrameRate>{{30, 1}, {15, 1}}));
}

TEST(PipeWireFormats, ReadsRangesAndHidesGreySensors) {
  const auto addSizes = [](auto* b) {
    for (unsigned w : {640U, 160U, 1920U, 2U}) spa_pod_builder_rectangle(b, w, w);
  };
  const auto jpeg =
      Offer(SPA_MEDIA_SUBTYPE_mjpg).choice(SPA_FORMAT_VIDEO_size, SPA_CHOICE_Step, addSizes).modes();
  ASSERT_EQ(jpeg.size(), 1U);
  EXPECT_EQ(jpeg[0].format, Mjpeg);
  EXPECT_TRUE(jpeg[0].rates.empty());
  EXPECT_TRUE(jpeg[0].reaches({1280, 720}));
  EXPECT_FALSE(jpeg[0].reaches({1281, 720}));
  const auto addLargestAsStep = [](auto* b) {
    for (unsigned w : {16U, 16U, 1920U, 1920U}) spa_pod_builder_rectangle(b, w, w);
  };
  const auto card =
      Offer(SPA_MEDIA_SUBTYPE_mjpg).choice(SPA_FORMAT_VIDEO_size, SPA_CHOICE_Step, addLargestAsStep).modes();
  ASSERT_EQ(card.size(), 1U);
  EXPECT_TRUE(card[0].reaches({1280, 720}));
  const auto addGrey = [](auto* b) { spa_pod_builder_id(b, SPA_VIDEO_FORMAT_GRAY8); };
  EXPECT_TRUE(Offer(SPA_MEDIA_SUBTYPE_raw)
                  .choice(SPA_FORMAT_VIDEO_format, SPA_CHOICE_None, addGrey)
                  .choice(SPA_FORMAT_VIDEO_size, SPA_CHOICE_Step, addSizes)
                  .modes()
                  .empty());
}

TEST(PipeWireFormats, DistrustsWhatACameraSaysOfItself) {
  // A choice of sizes that is shorter than its own head, and one whose values have no size.
  for (const auto& [bytes, valueBytes] : {std::pair{8U, 8U}, {32U, 0U}}) {
    struct {
      spa_pod_object object;
      std::uint32_t type[6] = {SPA_FORMAT_mediaType, 0, 4, SPA_TYPE_Id, SPA_MEDIA_TYPE_video, 0};
      std::uint32_t subtype[6] = {SPA_FORMAT_mediaSubtype, 0, 4, SPA_TYPE_Id, SPA_MEDIA_SUBTYPE_mjpg, 0};
      std::uint32_t size[2] = {SPA_FORMAT_VIDEO_size, 0};
      std::uint32_t choice[10] = {};
    } offer{};
    offer.object = {{sizeof offer - sizeof(spa_pod), SPA_TYPE_Object},
                    {SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat}};
    const std::uint32_t choice[] = {bytes, SPA_TYPE_Choice, SPA_CHOICE_Enum,
                                    0,     valueBytes,      SPA_TYPE_Rectangle};
    std::copy(std::begin(choice), std::end(choice), offer.choice);
    std::vector<VideoMode> modes;
    appendModes(&offer.object.pod, modes);
    EXPECT_TRUE(modes.empty());
  }
  const auto many = Offer(SPA_MEDIA_SUBTYPE_mjpg)
                        .choice(SPA_FORMAT_VIDEO_size, SPA_CHOICE_Enum,
                                [](auto* b) {
                                  for (unsigned w = 1; w < 2000; ++w) spa_pod_builder_rectangle(b, w, w);
                                })
                        .modes();
  EXPECT_EQ(many.size(), 256U);
}

TEST(PipeWireFormats, ListsNoSizeThatNoPictureHas) {
  struct Case {
    unsigned smallest, largest;
    int last;  // 0: nothing is listed
  };
  for (const Case c : {Case{1, 0x7fffffff, 16384},
                       {0x80000000, 0xffffffff, 0},
                       {0xffffffff, 1, 0},
                       {20000, 30000, 0},
                       {0, 0, 0},
                       {0, 640, 640}}) {
    const auto modes = Offer(SPA_MEDIA_SUBTYPE_mjpg)
                           .choice(SPA_FORMAT_VIDEO_size, SPA_CHOICE_Range,
                                   [c](auto* b) {
                                     for (unsigned w : {640U, c.smallest, c.largest})
                                       spa_pod_builder_rectangle(b, w, w);
                                   })
                           .modes();
    ASSERT_EQ(modes.size(), c.last ? 1U : 0U) << c.largest;
    if (c.last) {
      EXPECT_EQ(modes[0].largest, (PixelSize{c.last, c.last}));
    }
  }
}

TEST(PipeWireFormats, AgreeOnWhatIsOffered) {
  for (const auto format : {Nv12, Mjpeg}) {
    std::array<std::uint8_t, 512> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    const ModeChoice choice{format, SPA_VIDEO_FORMAT_NV12, k720, FrameRate{30, 1}};
    const auto agreed = agreedFormat(offerOf(builder, choice));
    ASSERT_TRUE(agreed);
    EXPECT_EQ(agreed->format, format);
    EXPECT_EQ(agreed->size, k720);
  }
  EXPECT_FALSE(agreedFormat(nullptr));
}

TEST(PipeWireFormats, AgreeOnWovenFieldsButNotOnSingleOnes) {
  const std::pair<spa_video_interlace_mode, bool> cases[] = {{SPA_VIDEO_INTERLACE_MODE_PROGRESSIVE, true},
                                                             {SPA_VIDEO_INTERLACE_MODE_INTERLEAVED, true},
                                                             {SPA_VIDEO_INTERLACE_MODE_MIXED, true},
                                                             {SPA_VIDEO_INTERLACE_MODE_FIELDS, false}};
  for (const auto& [mode, isShown] : cases) {
    std::array<std::uint8_t, 512> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    spa_video_info_raw info{};
    info.format = SPA_VIDEO_FORMAT_YUY2;
    info.size = {1280, 720};
    info.interlace_mode = mode;
    const auto agreed = agreedFormat(spa_format_video_raw_build(&builder, SPA_PARAM_Format, &info));
    EXPECT_EQ(agreed.has_value(), isShown) << mode;
  }
}

}  // namespace
}  // namespace vistrel::camera
