// Any numbers as the room that a panel takes: the strips lie on the desktop.
#include "linux/x11/PanelStruts.h"
#include "tests/fuzz/Bytes.h"

using namespace vistrel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t length) {
  fuzz::Bytes bytes(data, length);
  const PixelSize desktop{bytes.take<std::uint16_t>(), bytes.take<std::uint16_t>()};
  std::vector<std::uint32_t> values;
  while (!bytes.isEmpty()) values.push_back(bytes.take<std::uint32_t>());
  for (const auto& strut : x11::strutsIn(values, desktop)) {
    fuzz::check(strut.width > 0 && strut.height > 0, "a strip without room");
    fuzz::check(strut.x >= 0 && strut.y >= 0 && strut.x + strut.width <= desktop.width &&
                    strut.y + strut.height <= desktop.height,
                "a strip beside the desktop");
  }
  return 0;
}
