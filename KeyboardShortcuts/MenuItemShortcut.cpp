#include "KeyboardShortcuts/MenuItemShortcut.h"

#include <any>
#include <utility>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "KeyboardShortcuts/ObjectAssociation.h"
#include "foundation/MainQueue.h"
#include "foundation/NotificationCenter.h"

namespace vistrel::KeyboardShortcuts {

namespace {

constexpr const char* kActivityQueuePrefix = "com.apple.xpc.activity.";

const ObjectAssociation<ObservationToken>& observations() {
  static const ObjectAssociation<ObservationToken> value(AssociationPolicy::retainNonatomic);
  return value;
}

void apply(NSMenuItem& item, const std::optional<Shortcut>& shortcut) {
  item.setKeyEquivalent(shortcut ? shortcut->keyEquivalentText() : "");
  item.setKeyEquivalentModifierMask(shortcut ? shortcut->modifiers() : NSEventModifierFlags{});
}

bool isAbout(const Notification& notification, const Name& name) {
  const auto entry = notification.userInfo.find(kNameInUserInfo);
  if (entry == notification.userInfo.end()) return false;
  const auto* changed = std::any_cast<Name>(&entry->second);
  return changed && *changed == name;
}

std::shared_ptr<ObservationToken> follow(const std::shared_ptr<NSMenuItem>& item, const Name& name) {
  const std::weak_ptr<NSMenuItem> follower = item;
  const auto update = [follower, name](const Notification& notification) {
    const auto present = follower.lock();
    if (present && isAbout(notification, name)) setShortcut(present, getShortcut(name));
  };
  return std::make_shared<ObservationToken>(
      NotificationCenter::defaultCenter().addObserver(shortcutByNameDidChange, nullptr, update));
}

}  // namespace

void setShortcut(const std::shared_ptr<NSMenuItem>& item, const std::optional<Shortcut>& shortcut) {
  if (DispatchQueue::currentLabel().starts_with(kActivityQueuePrefix)) {
    MainQueue::async([item, shortcut] { apply(*item, shortcut); });
  } else {
    apply(*item, shortcut);
  }
}

void setShortcutFor(const std::shared_ptr<NSMenuItem>& item, const std::optional<Name>& name) {
  setShortcut(item, name ? getShortcut(*name) : std::nullopt);
  observations().attach(*item, name ? follow(item, *name) : nullptr);
}

}  // namespace vistrel::KeyboardShortcuts
