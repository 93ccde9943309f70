#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>

// The library's header needs the one above it.
#include <jpeglib.h>

#include "JpegEncoder.h"
#include "linux/camera/JpegDecoder.h"
#include "linux/camera/ReducedJpegDecoder.h"
#include "linux/camera/ReducedTransform.h"

namespace vistrel::camera {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Outcome = ReducedJpegDecoder::Outcome;
using Adjust = std::function<void(jpeg_compress_struct&)>;

constexpr int kReductions[] = {8, 4, 2};

PixelSize reduced(PixelSize size, int by) {
  return {(size.width + by - 1) / by, (size.height + by - 1) / by};
}

/// The samples that belong to the picture, without what lies between its rows.
Bytes samplesOf(const Picture& picture) {
  Bytes samples;
  for (std::size_t i = 0; i < picture.planes.size(); ++i) {
    const auto [data, stride] = picture.planes[i];
    const PixelSize size = i == 0 ? picture.size : picture.chromaSize;
    for (int y = 0; data && y < size.height; ++y) {
      const auto* row = data + static_cast<std::ptrdiff_t>(y) * stride;
      samples.insert(samples.end(), row, row + size.width);
    }
  }
  return samples;
}

/// The frame without its Huffman tables, as some cameras send it.
Bytes withoutTables(const Bytes& jpeg) {
  Bytes bare(jpeg.begin(), jpeg.begin() + 2);
  for (auto at = jpeg.begin() + 2; at != jpeg.end();) {
    const auto end = at[1] == 0xda ? jpeg.end() : at + 2 + at[2] * std::ptrdiff_t{256} + at[3];
    if (at[1] != 0xc4) bare.insert(bare.end(), at, end);
    at = end;
  }
  return bare;
}

class ReducedJpeg : public testing::Test {
 protected:
  /// Both decoders say the same of it; true when that is a picture.
  bool comesOutAlike(const Bytes& jpeg, PixelSize glass, bool hasSamples = true) {
    OwnedPicture wanted;
    OwnedPicture got;
    const bool isWhole = library_.decode(jpeg, glass, wanted);
    const Outcome outcome = decoder_.decode(jpeg, glass, got);
    if (outcome == Outcome::Unsuitable) return isWhole;
    EXPECT_EQ(outcome == Outcome::Decoded, isWhole);
    if (!isWhole || outcome != Outcome::Decoded) return false;
    EXPECT_EQ(got.picture.size, wanted.picture.size);
    EXPECT_EQ(got.picture.chromaSize, wanted.picture.chromaSize);
    EXPECT_TRUE(!hasSamples || samplesOf(got.picture) == samplesOf(wanted.picture));
    return true;
  }

  Bytes encode(const JpegShape& shape, const std::string& content) {
    return encodeJpeg(shape, [&, this](int y, Bytes& row) {
      for (std::size_t i = 0; i < row.size(); ++i) {
        const std::size_t rich = (i / 9 + static_cast<std::size_t>(y) / 7) % 3 * 60 + random_() % 24;
        row[i] = static_cast<std::uint8_t>(content == "plain"  ? 60 + i / 16
                                           : content == "rich" ? rich
                                                               : random_() >> 7);
      }
    });
  }

  std::minstd_rand random_{3};
  JpegDecoder library_;
  ReducedJpegDecoder decoder_;
  OwnedPicture out_;
};

TEST_F(ReducedJpeg, HasTheLibrarysSamples) {
  for (const PixelSize size : {PixelSize{8, 8}, {1, 1}, {17, 9}, {331, 213}})
    for (const std::string content : {"plain", "rich", "noise"})
      for (const int quality : {5, 75, 100})
        for (const auto& [x, y] : {std::pair{1, 1}, {2, 1}, {1, 2}, {2, 2}, {0, 0}})
          for (const int variant : {0, 1, 2, 3}) {
            JpegShape shape = {.size = size, .isGrey = x == 0, .lumaPerChromaX = x, .lumaPerChromaY = y};
            shape.quality = quality;
            shape.adjust = [variant](jpeg_compress_struct& codec) {
              codec.restart_interval = variant == 1 ? 3 : 0;
              codec.restart_in_rows = variant == 2 ? 1 : 0;
              codec.optimize_coding = variant == 3 ? TRUE : FALSE;
            };
            const Bytes jpeg = encode(shape, content);
            for (const int by : kReductions) {
              SCOPED_TRACE(testing::Message() << size.width << " " << content << " " << quality << " " << x
                                              << y << " variant " << variant << " at 1/" << by);
              EXPECT_TRUE(comesOutAlike(jpeg, reduced(size, by)));
              EXPECT_EQ(decoder_.decode(jpeg, reduced(size, by), out_), Outcome::Decoded);
              if (HasFailure()) return;
            }
          }
}

TEST_F(ReducedJpeg, TakesTheStandardsTablesWhereThereAreNone) {
  const Bytes whole = encode({.size = {64, 48}}, "rich");
  const Bytes bare = withoutTables(whole);
  ASSERT_EQ(whole.size() - bare.size(), 432) << "four tables";
  EXPECT_TRUE(comesOutAlike(bare, {8, 6}));
  EXPECT_EQ(decoder_.decode(bare, {8, 6}, out_), Outcome::Decoded);
}

TEST_F(ReducedJpeg, GivesTheSameAnswerToEveryPrefixAndToWrongBits) {
  // With restart markers, or small, the library looks at each code; else it takes wrong ones for zeros.
  for (const int interval : {0, 2}) {
    const auto adjust = [=](jpeg_compress_struct& codec) {
      codec.restart_interval = static_cast<unsigned>(interval);
    };
    const Bytes whole = withoutTables(encode({.size = {40, 24}, .adjust = adjust}, "rich"));
    for (const int by : kReductions) {
      const PixelSize glass = reduced({40, 24}, by);
      for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(testing::Message() << size << " bytes at 1/" << by);
        const Bytes prefix(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(comesOutAlike(prefix, glass), size >= whole.size() - 2);
      }
      for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
        SCOPED_TRACE(testing::Message() << "bit " << bit << " at 1/" << by);
        Bytes wrong = whole;
        wrong[bit / 8] = static_cast<std::uint8_t>(wrong[bit / 8] ^ 1U << bit % 8);
        comesOutAlike(wrong, glass, by == 8);  // below, the library's overflows depend on the processor
      }
      if (HasFailure()) return;
    }
  }
}

TEST_F(ReducedJpeg, LeavesWhatIsNoPlainFrameToTheLibrary) {
  const std::pair<const char*, Adjust> cases[] = {
      {"progressive", [](jpeg_compress_struct& codec) { jpeg_simple_progression(&codec); }},
      {"arithmetic", [](jpeg_compress_struct& codec) { codec.arith_code = TRUE; }},
      {"other colors", [](jpeg_compress_struct& codec) { codec.write_Adobe_marker = TRUE; }},
      {"four to one", [](jpeg_compress_struct& codec) { codec.comp_info[0].h_samp_factor = 4; }},
      {"chroma alike", [](jpeg_compress_struct& codec) { codec.comp_info[1].h_samp_factor = 2; }}};
  for (const auto& [name, adjust] : cases)
    EXPECT_EQ(decoder_.decode(encode({.size = {64, 48}, .adjust = adjust}, "rich"), {8, 6}, out_),
              Outcome::Unsuitable)
        << name;
  EXPECT_EQ(decoder_.decode(encode({.size = {64, 48}}, "rich"), {33, 24}, out_), Outcome::Unsuitable)
      << "full size";
  EXPECT_EQ(decoder_.decode({}, {8, 6}, out_), Outcome::Unsuitable);
}

TEST_F(ReducedJpeg, TakesNoMemoryForMoreThanTheBytesCanHold) {
  Bytes jpeg = encode({.size = {64, 48}}, "rich");
  for (std::size_t at = 0; at + 8 < jpeg.size(); ++at)
    if (jpeg[at] == 0xff && jpeg[at + 1] == 0xc0)
      std::fill_n(jpeg.begin() + static_cast<std::ptrdiff_t>(at) + 5, 4, 0x3f);
  EXPECT_EQ(decoder_.decode(jpeg, {1, 1}, out_), Outcome::Damaged);
  EXPECT_EQ(out_.picture.planes[0].data, nullptr);
}

TEST_F(ReducedJpeg, TransformsAlikeWithAndWithoutTheProcessorsHelp) {
  const auto compare = [this]<int side>(std::integral_constant<int, side>) {
    for (int i = 0; i < 2000; ++i) {
      Coefficients block{};
      const auto reach = 2U << i % 16;
      for (auto& c : block)
        c = static_cast<std::int16_t>(random_() % 3 == 0 ? random_() % reach - reach / 2 : 0);
      std::array<std::uint8_t, 64> quick{};
      std::array<std::uint8_t, 64> plain{};
      transform<side>(block, quick.data(), kJpegBlock);
      transformPlainly<side>(block, plain.data(), kJpegBlock);
      ASSERT_EQ(quick, plain) << side << ", block " << i;
    }
  };
  compare(std::integral_constant<int, 2>{});
  compare(std::integral_constant<int, 4>{});
  compare(std::integral_constant<int, 8>{});
}

}  // namespace
}  // namespace vistrel::camera
