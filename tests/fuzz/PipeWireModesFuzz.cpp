// Any bytes as the formats that a node offers and agrees on. The library hands on whole pods: the first
// length is true.
#include "linux/camera/PipeWireFormats.h"
#include "tests/fuzz/Camera.h"

using namespace vistrel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t length) {
  if (length < sizeof(spa_pod)) return 0;
  fuzz::Bytes bytes(data, length);
  auto pod = bytes.block(length);
  const auto body = static_cast<std::uint32_t>(length - sizeof(spa_pod));
  std::memcpy(pod.data(), &body, sizeof body);
  const auto* offer = reinterpret_cast<const spa_pod*>(pod.data());
  std::vector<camera::VideoMode> modes;
  for (int i = 0; i < 2; ++i) camera::appendModes(offer, modes);
  fuzz::useModes(modes);
  (void)camera::agreedFormat(offer);
  return 0;
}
