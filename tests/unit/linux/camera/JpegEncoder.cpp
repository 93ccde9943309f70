#include "JpegEncoder.h"

#include <cstdio>
#include <cstdlib>

// The library's header needs <cstdio> above it.
#include <jpeglib.h>

namespace vistrel::camera {

std::vector<std::uint8_t> encodeJpeg(const JpegShape& shape, const FillRow& fill) {
  jpeg_compress_struct codec{};
  jpeg_error_mgr errors{};
  codec.err = jpeg_std_error(&errors);
  jpeg_create_compress(&codec);
  unsigned char* memory = nullptr;
  unsigned long length = 0;
  jpeg_mem_dest(&codec, &memory, &length);
  codec.image_width = static_cast<JDIMENSION>(shape.size.width);
  codec.image_height = static_cast<JDIMENSION>(shape.size.height);
  codec.input_components = shape.isGrey ? 1 : 3;
  codec.in_color_space = shape.isGrey ? JCS_GRAYSCALE : JCS_YCbCr;
  jpeg_set_defaults(&codec);
  jpeg_set_quality(&codec, shape.quality, TRUE);
  if (!shape.isGrey) {
    codec.comp_info[0].h_samp_factor = shape.lumaPerChromaX;
    codec.comp_info[0].v_samp_factor = shape.lumaPerChromaY;
  }
  if (shape.adjust) shape.adjust(codec);
  jpeg_start_compress(&codec, TRUE);
  std::vector<std::uint8_t> row(static_cast<std::size_t>(codec.input_components) *
                                static_cast<std::size_t>(shape.size.width));
  for (int y = 0; y < shape.size.height; ++y) {
    fill(y, row);
    JSAMPROW rows[] = {row.data()};
    jpeg_write_scanlines(&codec, rows, 1);
  }
  jpeg_finish_compress(&codec);
  std::vector<std::uint8_t> jpeg(memory, memory + length);
  jpeg_destroy_compress(&codec);
  std::free(memory);
  return jpeg;
}

std::vector<std::uint8_t> testJpeg(PixelSize size, JpegSampling sampling) {
  const bool isGrey = sampling == JpegSampling::Grey;
  std::vector<std::uint8_t> wanted;
  for (int x = 0; x < size.width; ++x) {
    wanted.push_back(static_cast<std::uint8_t>(2 * x < size.width ? kTestJpegLeft : kTestJpegRight));
    if (!isGrey) wanted.insert(wanted.end(), {90, kTestJpegRed});
  }
  const JpegShape shape = {.size = size,
                           .isGrey = isGrey,
                           .lumaPerChromaX = sampling == JpegSampling::Yuv444 ? 1 : 2,
                           .lumaPerChromaY = sampling == JpegSampling::Yuv420 ? 2 : 1};
  return encodeJpeg(shape, [&](int, std::vector<std::uint8_t>& row) { row = wanted; });
}

}  // namespace vistrel::camera
