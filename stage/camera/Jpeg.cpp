#include "stage/camera/Jpeg.h"

#include <array>
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

/// Past the marker segments, at the first byte of picture data.
std::size_t headLength(std::span<const std::uint8_t> file) {
  std::size_t at = 2;
  while (file[at + 1] != 0xda) at += 2 + file[at + 2] * std::size_t{256} + file[at + 3];
  return at + 2 + file[at + 2] * std::size_t{256} + file[at + 3];
}

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

}  // namespace vistrel::stage
