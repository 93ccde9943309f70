// Any bytes as a stored shortcut: what is read is written as the same.
#include "KeyboardShortcuts/Shortcut.h"
#include "tests/fuzz/Bytes.h"

using vistrel::KeyboardShortcuts::Shortcut;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t length) {
  const vistrel::fuzz::Bytes bytes(data, length);
  const auto shortcut = Shortcut::decode(bytes.text());
  if (!shortcut) return 0;
  vistrel::fuzz::check(Shortcut::decode(shortcut->encode()) == shortcut, "read back as another one");
  (void)shortcut->modifiers();
  (void)std::hash<Shortcut>{}(*shortcut);
  return 0;
}
