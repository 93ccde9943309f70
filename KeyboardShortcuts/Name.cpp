#include "KeyboardShortcuts/Name.h"

#include <utility>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "KeyboardShortcuts/Storage.h"

namespace vistrel::KeyboardShortcuts {

Name::Name(std::string rawValue, std::optional<Shortcut> defaultShortcut)
    : rawValue_(std::move(rawValue)), defaultShortcut_(defaultShortcut) {
  if (defaultShortcut_ && !hasStoredValue(*this)) storeShortcut(*defaultShortcut_, *this);
}

}  // namespace vistrel::KeyboardShortcuts
