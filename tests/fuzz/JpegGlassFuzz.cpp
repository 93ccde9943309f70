// Any bytes as a camera's compressed frame, through whichever decoder takes it, to the glass.
#include "linux/camera/FrameDecoder.h"
#include "linux/camera/JpegHeader.h"
#include "tests/fuzz/Camera.h"

using namespace vistrel;

// Decoding a large picture is slow, and nothing else.
static constexpr int kMostSamples = 1 << 20;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t length) {
  fuzz::Bytes bytes(data, length);
  fuzz::Bytes choices(bytes);
  const PixelSize glass{1 + bytes.take<std::uint8_t>(), 1 + bytes.take<std::uint8_t>()};
  const auto jpeg = bytes.block(bytes.size());
  const auto header = camera::readJpegHeader(jpeg);
  if (header && std::int64_t{header->size.width} * header->size.height > kMostSamples) return 0;
  static camera::FrameDecoder decoder;
  camera::OwnedPicture picture;
  if (decoder.decode(jpeg, glass, picture)) fuzz::paint(picture.picture, choices);
  return 0;
}
