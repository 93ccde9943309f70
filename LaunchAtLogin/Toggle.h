#pragma once

#include <functional>
#include <memory>
#include <string>

#include "LaunchAtLogin/LaunchAtLogin.h"
#include "swiftui/CustomView.h"

namespace vistrel::LaunchAtLogin {

/// A check box bound to the setting, with a label of the caller's choice. It is drawn again at each change.
class Toggle final : public swiftui::CustomView {
 public:
  /// Labelled "Launch at login".
  Toggle();
  explicit Toggle(const std::function<swiftui::View()>& label);
  /// The text under a key of the program's string table, the key itself where the table has none.
  [[nodiscard]] static std::shared_ptr<Toggle> withTitleKey(const std::string& key);
  /// The title as it stands.
  [[nodiscard]] static std::shared_ptr<Toggle> withTitle(const std::string& title);

  [[nodiscard]] swiftui::View body() override;

 private:
  std::shared_ptr<Observable> launchAtLogin_;
  swiftui::View label_;
  std::shared_ptr<bool> isAlive_ = std::make_shared<bool>(true);
  AnyCancellable changes_;
};

}  // namespace vistrel::LaunchAtLogin
