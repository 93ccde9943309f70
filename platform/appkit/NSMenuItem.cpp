#include "appkit/NSMenuItem.h"

#include <utility>

namespace vistrel {

NSMenuItem::NSMenuItem(std::string title, Selector action, std::string keyEquivalent)
    : title_(std::move(title)), action_(std::move(action)), keyEquivalent_(std::move(keyEquivalent)) {}

std::shared_ptr<NSMenuItem> NSMenuItem::separatorItem() {
  auto item = std::make_shared<NSMenuItem>();
  item->isSeparator_ = true;
  return item;
}

}  // namespace vistrel
