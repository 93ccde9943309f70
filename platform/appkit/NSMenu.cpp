#include "appkit/NSMenu.h"

#include <algorithm>
#include <utility>

#include "appkit/NSApplication.h"

namespace vistrel {

void NSMenu::insertItem(std::shared_ptr<NSMenuItem> item, std::size_t index) {
  items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(std::min(index, items_.size())),
                std::move(item));
}

void NSMenu::performActionForItem(const std::shared_ptr<NSMenuItem>& item, NSResponder* start) {
  if (!item || item->action().empty()) return;
  NSApplication::shared().sendAction(item->action(), item.get(), start);
}

}  // namespace vistrel
