#include "carbon/SymbolicHotKeys.h"

#include <cstdint>
#include <utility>

#include "backend/Backend.h"

namespace vistrel {

namespace {

SymbolicHotKeys::value_type dictionaryOf(const backend::HotKeyCombination& hotKey) {
  return {{kHISymbolicHotKeyEnabled, true},
          {kHISymbolicHotKeyCode, std::int64_t{hotKey.keyCode}},
          {kHISymbolicHotKeyModifiers, std::int64_t{hotKey.modifiers}}};
}

}  // namespace

OSStatus CopySymbolicHotKeys(std::optional<SymbolicHotKeys>* result) {
  const auto hotKeys = backend::current().keyboard().symbolicHotKeys();
  result->reset();
  if (!hotKeys) return noErr;
  SymbolicHotKeys dictionaries;
  dictionaries.reserve(hotKeys->size());
  for (const auto& hotKey : *hotKeys) dictionaries.push_back(dictionaryOf(hotKey));
  *result = std::move(dictionaries);
  return noErr;
}

bool PushSymbolicHotKeyMode() { return backend::current().keyboard().setKeyboardCaptured(true); }

void PopSymbolicHotKeyMode() { backend::current().keyboard().setKeyboardCaptured(false); }

}  // namespace vistrel
