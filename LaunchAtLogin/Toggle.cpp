#include "LaunchAtLogin/Toggle.h"

#include "foundation/Bundle.h"
#include "foundation/MainQueue.h"

namespace vistrel::LaunchAtLogin {

Toggle::Toggle() : Toggle([] { return swiftui::Text("Launch at login"); }) {}

Toggle::Toggle(const std::function<swiftui::View()>& label)
    : launchAtLogin_(sharedObservable()), label_(label()) {
  // The change is announced before it happens, so the drawing waits for the next turn.
  changes_ = launchAtLogin_->onWillChange([this, alive = std::weak_ptr<bool>(isAlive_)] {
    MainQueue::async([this, alive] {
      if (!alive.expired()) stateDidChange();
    });
  });
}

std::shared_ptr<Toggle> Toggle::withTitleKey(const std::string& key) {
  return withTitle(Bundle::main().localizedString(key));
}

std::shared_ptr<Toggle> Toggle::withTitle(const std::string& title) {
  return std::make_shared<Toggle>([&] { return swiftui::Text(title); });
}

swiftui::View Toggle::body() {
  return swiftui::Toggle(label_, {[object = launchAtLogin_] { return object->isEnabled(); },
                                  [object = launchAtLogin_](bool isOn) { object->setEnabled(isOn); }});
}

}  // namespace vistrel::LaunchAtLogin
