#include "TestJpeg.h"

#include "JpegEncoder.h"

namespace vistrel::camera {

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
