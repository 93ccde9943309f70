#include "benchmarks/BareDecoder.h"

namespace vistrel::bench {

BareDecoder::BareDecoder() {
  codec_.err = jpeg_std_error(&errors_);
  jpeg_create_decompress(&codec_);
}

void BareDecoder::decode(const std::uint8_t* bytes, std::size_t length) {
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

}  // namespace vistrel::bench
