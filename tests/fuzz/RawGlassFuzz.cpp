// Any format, size, distance of rows and number of blocks, with memory of any length, to the glass.
#include <array>

#include "linux/camera/Picture.h"
#include "linux/camera/VideoMode.h"
#include "tests/fuzz/Camera.h"

using namespace vistrel;

// One of a few likely numbers, or any.
static int side(fuzz::Bytes& bytes) {
  const auto choice = bytes.take<std::uint8_t>();
  return choice < 200 ? choice : bytes.take<std::int32_t>();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t length) {
  fuzz::Bytes bytes(data, length);
  const auto format = static_cast<camera::PixelFormat>(bytes.take<std::uint8_t>() %
                                                       (static_cast<int>(camera::PixelFormat::Mjpeg) + 1));
  const PixelSize size{side(bytes), side(bytes)};
  const auto color = static_cast<camera::YuvColor>(bytes.take<std::uint8_t>() % 4);
  fuzz::Bytes choices(bytes);
  const std::size_t count = 1 + bytes.take<std::uint8_t>() % 4;
  std::array<std::vector<std::uint8_t>, 4> blocks;
  std::array<camera::PlaneMemory, 4> memory;
  for (std::size_t i = 0; i < count; ++i) {
    memory[i].stride = side(bytes);
    // Long ones come from short inputs.
    blocks[i] = bytes.block(bytes.take<std::uint16_t>());
    blocks[i].resize(blocks[i].size() + bytes.take<std::uint16_t>());
    memory[i].bytes = blocks[i];
  }
  const auto picture = pictureIn({memory.data(), count}, format, size, color);
  if (picture) fuzz::paint(*picture, choices);
  return 0;
}
