#include "stage/screen/Png.h"

#include <png.h>

namespace vistrel::stage {

bool writePng(const Image& image, const std::string& path) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  png.width = static_cast<png_uint_32>(image.width);
  png.height = static_cast<png_uint_32>(image.height);
  png.format = PNG_FORMAT_RGB;
  std::vector<png_byte> bytes;
  bytes.reserve(image.pixels.size() * 3);
  for (const std::uint32_t pixel : image.pixels)
    for (const unsigned shift : {16U, 8U, 0U}) bytes.push_back(static_cast<png_byte>(pixel >> shift & 0xffU));
  return png_image_write_to_file(&png, path.c_str(), 0, bytes.data(), 0, nullptr) != 0;
}

}  // namespace vistrel::stage
