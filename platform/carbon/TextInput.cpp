#include "carbon/TextInput.h"

#include "backend/Backend.h"

namespace vistrel {

std::optional<TISInputSource> TISCopyCurrentASCIICapableKeyboardLayoutInputSource() {
  if (!backend::isInstalled()) return std::nullopt;
  return TISInputSource();
}

OSStatus UCKeyTranslate(const UCKeyboardLayout& /*layout*/, std::uint16_t keyCode, std::uint16_t action,
                        std::string* text) {
  if (action != kUCKeyActionDisplay) return paramErr;
  auto character = backend::current().keyboard().displayCharacter(keyCode);
  if (!character) return paramErr;
  *text = *std::move(character);
  return noErr;
}

}  // namespace vistrel
