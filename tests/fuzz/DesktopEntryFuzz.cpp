// Any bytes as a desktop entry and as a value to set in it: the value is read back, and the others stay.
#include <string>

#include "base/Unicode.h"
#include "linux/files/DesktopEntry.h"
#include "tests/fuzz/Bytes.h"

using namespace vistrel;

static constexpr const char* kKey = "Exec";

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t length) {
  fuzz::Bytes bytes(data, length);
  const auto raw = bytes.block(bytes.take<std::uint8_t>());
  const std::string value = unicode::repairedUtf8({reinterpret_cast<const char*>(raw.data()), raw.size()});
  const auto old = files::DesktopEntry::parse(bytes.text());
  if (!old) return 0;
  auto entry = *old;
  entry.set(kKey, value);
  const auto written = files::DesktopEntry::parse(entry.text());
  fuzz::check(written.has_value(), "what was written is no entry");
  fuzz::check(written->value(kKey) == value, "read back as another value");
  for (const auto& key : old->keys())
    if (key != kKey) fuzz::check(written->value(key) == old->value(key), "another value was changed");
  (void)files::DesktopEntry::quotedArgument(value);
  return 0;
}
