#include "app/ShortcutNames.h"

namespace vistrel::shortcutName {

const KeyboardShortcuts::Name& toggleShortcutMode() {
  static const KeyboardShortcuts::Name name("toggleShortcutMode");
  return name;
}

}  // namespace vistrel::shortcutName
