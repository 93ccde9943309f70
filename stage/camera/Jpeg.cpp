#include "stage/camera/Jpeg.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <utility>

#include <jpeglib.h>

namespace vistrel::stage {
namespace {

constexpr int kBlock = 8;

/// One JPEG being written to memory.
class Compressor {
 public:
  Compressor() {
    info_.err = jpeg_std_error(&errors_);
    jpeg_create_compress(&info_);
    jpeg_mem_dest(&info_, &memory_, &length_);
  }
  Compressor(const Compressor&) = delete;
  Compressor& operator=(const Compressor&) = delete;
  ~Compressor() {
    jpeg_destroy_compress(&info_);
    std::free(memory_);  // NOLINT(cppcoreguidelines-no-malloc): libjpeg allocates it
  }

  std::span<const std::uint8_t> compress(RawPicture& picture, int quality) {
    describe(picture, quality);
    jpeg_start_compress(&info_, TRUE);
    for (int y = 0; y < picture.height(); y += kBlock) writeBlockRow(picture, y);
    jpeg_finish_compress(&info_);
    return {memory_, length_};
  }

 private:
  void describe(const RawPicture& picture, int quality) {
    info_.image_width = picture.width();
    info_.image_height = picture.height();
    info_.input_components = 3;
    info_.in_color_space = JCS_YCbCr;
    jpeg_set_defaults(&info_);
    jpeg_set_quality(&info_, quality, TRUE);
    info_.raw_data_in = TRUE;
    info_.restart_in_rows = 1;
    info_.comp_info[0].h_samp_factor = 2;
    info_.comp_info[0].v_samp_factor = 1;
  }

  void writeBlockRow(RawPicture& picture, int y) {
    std::array<std::array<JSAMPROW, kBlock>, 3> rows{};
    std::array<JSAMPARRAY, 3> planes{};
    for (int plane = 0; plane < 3; ++plane) {
      for (int i = 0; i < kBlock; ++i) rows[plane][i] = picture.line(plane, y + i);
      planes[plane] = rows[plane].data();
    }
    jpeg_write_raw_data(&info_, planes.data(), kBlock);
  }

  jpeg_compress_struct info_{};
  jpeg_error_mgr errors_{};
  unsigned char* memory_ = nullptr;
  unsigned long length_ = 0;  // NOLINT(google-runtime-int): libjpeg's own type
};

std::size_t segmentLength(std::span<const std::uint8_t> file, std::size_t at) {
  return 2 + file[at + 2] * std::size_t{256} + file[at + 3];
}

/// Past the marker segments, at the first byte of picture data.
std::size_t headLength(std::span<const std::uint8_t> file) {
  std::size_t at = 2;
  while (file[at + 1] != 0xda) at += segmentLength(file, at);
  return at + segmentLength(file, at);
}

/// Without the segment that tells how long an interval is.
Bytes headWithoutInterval(std::span<const std::uint8_t> file) {
  const std::size_t end = headLength(file);
  Bytes head(file.begin(), file.begin() + 2);
  for (std::size_t at = 2; at < end; at += segmentLength(file, at)) {
    const auto segment = file.subspan(at, segmentLength(file, at));
    if (segment[1] != 0xdd) head.insert(head.end(), segment.begin(), segment.end());
  }
  return head;
}

/// Entropy-coded data, written bit by bit.
class BitWriter {
 public:
  explicit BitWriter(Bytes& out) : out_(out) {}

  /// The first `bits` of the byte.
  void add(std::uint8_t byte, int bits) {
    pending_ = pending_ << bits | byte >> (kByte - bits);
    count_ += bits;
    if (count_ < kByte) return;
    count_ -= kByte;
    const auto whole = static_cast<std::uint8_t>(pending_ >> count_);
    out_.push_back(whole);
    if (whole == 0xff) out_.push_back(0);
  }

  void pad() {
    if (count_ > 0) add(0xff, kByte - count_);
  }

 private:
  static constexpr int kByte = 8;
  Bytes& out_;
  std::uint32_t pending_ = 0;
  int count_ = 0;
};

}  // namespace

JpegPieces JpegPieces::encode(RawPicture& picture, int quality) {
  Compressor compressor;
  const auto file = compressor.compress(picture, quality);
  const std::size_t start = headLength(file);
  JpegPieces result;
  result.head.assign(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(start));
  Bytes piece;
  for (std::size_t at = start; at < file.size(); ++at) {
    const bool isMarker = file[at] == 0xff && file[at + 1] != 0;
    if (!isMarker) {
      piece.push_back(file[at]);
      continue;
    }
    result.pieces.push_back(std::exchange(piece, {}));
    ++at;
  }
  return result;
}

// An interval ends with two zeros, the code of an empty block's end, and ones up to the next byte.
Bytes withoutRestarts(const Bytes& file) {
  Bytes result = headWithoutInterval(file);
  result.reserve(file.size());
  BitWriter writer(result);
  for (std::size_t at = headLength(file); file[at] != 0xff || file[at + 1] != 0xd9;) {
    const std::uint8_t byte = file[at];
    at += byte == 0xff ? 2 : 1;
    const bool isLast = file[at] == 0xff && file[at + 1] != 0;
    writer.add(byte, isLast ? 8 - std::countr_one(byte) : 8);
    if (isLast && file[at + 1] != 0xd9) at += 2;
  }
  writer.pad();
  result.insert(result.end(), {0xff, 0xd9});
  return result;
}

}  // namespace vistrel::stage
