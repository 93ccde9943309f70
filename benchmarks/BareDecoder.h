#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

// The library's header needs <cstdio> above it.
#include <jpeglib.h>

namespace vistrel::bench {

/// The decoder's floor: the library's own decoding of a JPEG at one eighth, with nothing kept of it. For
/// frames that are known to be whole: the library ends the program on a broken one.
class BareDecoder {
 public:
  BareDecoder() {
    codec_.err = jpeg_std_error(&errors_);
    jpeg_create_decompress(&codec_);
  }
  BareDecoder(const BareDecoder&) = delete;
  BareDecoder& operator=(const BareDecoder&) = delete;
  ~BareDecoder() { jpeg_destroy_decompress(&codec_); }

  void decode(const std::uint8_t* bytes, std::size_t length) {
    jpeg_mem_src(&codec_, bytes, length);
    jpeg_read_header(&codec_, TRUE);
    codec_.out_color_space = JCS_YCbCr;
    codec_.scale_num = 1;
    codec_.scale_denom = 8;
    jpeg_start_decompress(&codec_);
    row_.resize(static_cast<std::size_t>(codec_.output_width) * 3);
    JSAMPROW rows[] = {row_.data()};
    while (codec_.output_scanline < codec_.output_height) jpeg_read_scanlines(&codec_, rows, 1);
    jpeg_finish_decompress(&codec_);
  }

 private:
  jpeg_decompress_struct codec_{};
  jpeg_error_mgr errors_{};
  std::vector<std::uint8_t> row_;
};

}  // namespace vistrel::bench
