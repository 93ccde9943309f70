#include "KeyboardShortcuts/ModifierFlags.h"

#include <array>

#include "base/KeyCodes.h"

namespace vistrel::KeyboardShortcuts {

namespace {

struct Modifier {
  std::int64_t carbonBit;
  std::uint64_t eventFlag;
  const char* symbol;
};

// In the order of display.
constexpr std::array<Modifier, 4> kModifiers = {{
    {controlKey, NSEventModifierFlags::kControl, "⌃"},
    {optionKey, NSEventModifierFlags::kOption, "⌥"},
    {shiftKey, NSEventModifierFlags::kShift, "⇧"},
    {cmdKey, NSEventModifierFlags::kCommand, "⌘"},
}};

}  // namespace

std::int64_t carbon(NSEventModifierFlags flags) {
  std::int64_t bits = 0;
  for (const auto& modifier : kModifiers) {
    if (flags.contains(modifier.eventFlag)) bits |= modifier.carbonBit;
  }
  return bits;
}

NSEventModifierFlags modifierFlags(std::int64_t carbon) {
  NSEventModifierFlags flags;
  for (const auto& modifier : kModifiers) {
    if ((carbon & modifier.carbonBit) != 0) flags.rawValue |= modifier.eventFlag;
  }
  return flags;
}

std::int64_t normalized(std::int64_t carbonBits) { return carbon(modifierFlags(carbonBits)); }

std::string description(NSEventModifierFlags flags) {
  std::string text;
  for (const auto& modifier : kModifiers) {
    if (flags.contains(modifier.eventFlag)) text += modifier.symbol;
  }
  return text;
}

}  // namespace vistrel::KeyboardShortcuts
