// Any bytes as a key combination of a desktop's: what is read has a key.
#include "linux/keyboard/Accelerator.h"
#include "tests/fuzz/Bytes.h"

using namespace vistrel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t length) {
  const std::string_view text = fuzz::Bytes(data, length).text();
  for (const auto& found : {keyboard::parseGtkAccelerator(text), keyboard::parseQtAccelerator(text)})
    fuzz::check(!found || found->symbol != XKB_KEY_NoSymbol || found->place != 0,
                "a combination without a key");
  return 0;
}
