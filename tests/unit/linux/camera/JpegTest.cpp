#include <gtest/gtest.h>

#include <random>

#include <cstdio>

// The library's header needs the one above it.
#include <jpeglib.h>

#include "JpegEncoder.h"
#include "linux/camera/FrameDecoder.h"

namespace vistrel::camera {
namespace {

int lumaAt(const Picture& picture, int x, int y) {
  return picture.planes[0].data[static_cast<std::ptrdiff_t>(y) * picture.planes[0].stride + x];
}

/// What holds for libjpeg alone and for the choice between it and the reduced decoder.
template <class Decoder>
class AnyJpegDecoder : public testing::Test {};
using Decoders = testing::Types<JpegDecoder, FrameDecoder>;
TYPED_TEST_SUITE(AnyJpegDecoder, Decoders);

TYPED_TEST(AnyJpegDecoder, DecodesAtTheSmallestScaleThatFillsTheGlass) {
  struct Case {
    PixelSize size, glass, decoded;
  } const cases[] = {{{640, 480}, {640, 480}, {640, 480}}, {{640, 480}, {321, 200}, {640, 480}},
                     {{640, 480}, {320, 240}, {320, 240}}, {{640, 480}, {100, 121}, {320, 240}},
                     {{640, 480}, {80, 60}, {80, 60}},     {{641, 483}, {81, 61}, {81, 61}},
                     {{33, 17}, {1, 1}, {5, 3}},           {{640, 480}, {4000, 3000}, {640, 480}}};
  TypeParam decoder;
  OwnedPicture out;
  for (const Case& c : cases)
    for (const auto sampling :
         {JpegSampling::Yuv420, JpegSampling::Yuv422, JpegSampling::Yuv444, JpegSampling::Grey}) {
      const auto jpeg = testJpeg(c.size, sampling);
      ASSERT_TRUE(decoder.decode(jpeg, c.glass, out)) << c.size.width << " for " << c.glass.width;
      EXPECT_EQ(out.picture.size, c.decoded) << c.size.width << " for " << c.glass.width;
      EXPECT_EQ(out.picture.planes[1].data == nullptr, sampling == JpegSampling::Grey);
      EXPECT_EQ(out.picture.color, YuvColor::Bt601Full);
      const PixelSize d = out.picture.size;
      EXPECT_NEAR(lumaAt(out.picture, 0, d.height - 1), kTestJpegLeft, 12);
      EXPECT_NEAR(lumaAt(out.picture, d.width - 1, 0), kTestJpegRight, 12);
      if (sampling == JpegSampling::Grey) continue;
      const auto& v = out.picture.planes[2];
      const PixelSize chroma = out.picture.chromaSize;
      EXPECT_NEAR(v.data[(chroma.height - 1) * v.stride + chroma.width - 1], kTestJpegRed, 12);
    }
}

TYPED_TEST(AnyJpegDecoder, GivesUpWhenCalledOffAndGoesOnLater) {
  std::atomic<bool> isCalledOff = true;
  TypeParam decoder(isCalledOff);
  OwnedPicture out;
  const auto jpeg = testJpeg({64, 48}, JpegSampling::Yuv420);
  EXPECT_FALSE(decoder.decode(jpeg, {64, 48}, out));
  isCalledOff = false;
  EXPECT_TRUE(decoder.decode(jpeg, {64, 48}, out));
}

TYPED_TEST(AnyJpegDecoder, RefusesWhatIsDamagedAndGoesOn) {
  const auto whole = testJpeg({320, 240}, JpegSampling::Yuv422);
  TypeParam decoder;
  OwnedPicture out;
  const auto decodes = [&](std::vector<std::uint8_t> jpeg) { return decoder.decode(jpeg, {80, 60}, out); };
  const auto cut = [&whole](std::ptrdiff_t size) { return std::vector(whole.begin(), whole.begin() + size); };
  const auto size = static_cast<std::ptrdiff_t>(whole.size());
  for (std::ptrdiff_t left = 0; left < size - 3; left += size / 40) EXPECT_FALSE(decodes(cut(left))) << left;
  EXPECT_TRUE(decodes(cut(size - 2))) << "the end marker may be missing";
  EXPECT_FALSE(decodes(cut(size - 3)));
  EXPECT_FALSE(decodes(std::vector<std::uint8_t>(5000, 0xff)));
  EXPECT_FALSE(decodes(std::vector<std::uint8_t>(5000, 0)));
  auto padded = whole;
  padded.resize(padded.size() + 4096);
  EXPECT_TRUE(decodes(padded)) << "cameras pad their frames";
  std::minstd_rand random(7);
  for (int i = 0; i < 300; ++i) {  // whatever comes of these, it comes back
    auto noisy = whole;
    for (int hits = 0; hits < 8; ++hits)
      noisy[random() % noisy.size()] = static_cast<std::uint8_t>(random() >> 8);
    decodes(noisy);
  }
  EXPECT_TRUE(decodes(whole));
}

TYPED_TEST(AnyJpegDecoder, RefusesChromaThatNoCameraSends) {
  using Adjust = void (*)(jpeg_compress_struct&);
  const Adjust samplings[] = {[](jpeg_compress_struct& codec) { codec.comp_info[1].h_samp_factor = 2; },
                              [](jpeg_compress_struct& codec) { codec.comp_info[2].h_samp_factor = 2; },
                              [](jpeg_compress_struct& codec) { codec.comp_info[1].v_samp_factor = 2; },
                              [](jpeg_compress_struct& codec) {
                                for (int i : {1, 2}) codec.comp_info[i].v_samp_factor = 2;
                              }};
  TypeParam decoder;
  OwnedPicture out;
  for (const Adjust adjust : samplings)
    for (const PixelSize glass : {PixelSize{64, 48}, {32, 24}, {8, 6}})
      EXPECT_FALSE(
          decoder.decode(encodeJpeg({.size = {64, 48}, .adjust = adjust},
                                    [](int, std::vector<std::uint8_t>& row) { row.assign(row.size(), 9); }),
                         glass, out));
}

}  // namespace
}  // namespace vistrel::camera
