#include "TestJpeg.h"

#include <cstdio>
#include <cstdlib>

// The library's header needs <cstdio> above it.
#include <jpeglib.h>

namespace vistrel::capture {

std::vector<std::uint8_t> testJpeg(PixelSize size, JpegSampling sampling) {
  jpeg_compress_struct codec{};
  jpeg_error_mgr errors{};
  codec.err = jpeg_std_error(&errors);
  jpeg_create_compress(&codec);
  unsigned char* memory = nullptr;
  unsigned long length = 0;
  jpeg_mem_dest(&codec, &memory, &length);
  const bool isGrey = sampling == JpegSampling::Grey;
  codec.image_width = static_cast<JDIMENSION>(size.width);
  codec.image_height = static_cast<JDIMENSION>(size.height);
  codec.input_components = isGrey ? 1 : 3;
  codec.in_color_space = isGrey ? JCS_GRAYSCALE : JCS_YCbCr;
  jpeg_set_defaults(&codec);
  if (!isGrey) {
    codec.comp_info[0].h_samp_factor = sampling == JpegSampling::Yuv444 ? 1 : 2;
    codec.comp_info[0].v_samp_factor = sampling == JpegSampling::Yuv420 ? 2 : 1;
  }
  jpeg_start_compress(&codec, TRUE);
  std::vector<std::uint8_t> row;
  for (int x = 0; x < size.width; ++x) {
    row.push_back(static_cast<std::uint8_t>(2 * x < size.width ? kTestJpegLeft : kTestJpegRight));
    if (!isGrey) row.insert(row.end(), {90, kTestJpegRed});
  }
  JSAMPROW rows[] = {row.data()};
  for (int y = 0; y < size.height; ++y) jpeg_write_scanlines(&codec, rows, 1);
  jpeg_finish_compress(&codec);
  std::vector<std::uint8_t> jpeg(memory, memory + length);
  jpeg_destroy_compress(&codec);
  std::free(memory);
  return jpeg;
}

}  // namespace vistrel::capture
