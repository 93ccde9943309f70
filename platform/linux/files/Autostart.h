#pragma once

#include <optional>
#include <string>
#include <vector>

#include "backend/LoginItems.h"

namespace vistrel::files {

/// The folders of XDG Autostart, the one that outranks all others first.
struct AutostartFolders {
  std::string ofUser;
  std::vector<std::string> ofSystem;

  /// From XDG_CONFIG_HOME and XDG_CONFIG_DIRS, or their defaults.
  [[nodiscard]] static AutostartFolders fromEnvironment();
};

/// The desktop entries that a desktop starts with the session.
class Autostart final : public backend::LoginItems {
 public:
  /// `program` is the absolute path that an enabled item starts; `desktops` are the names of the running one,
  /// as XDG_CURRENT_DESKTOP gives them.
  Autostart(AutostartFolders folders, std::string program, const std::string& desktops);

  Result<std::vector<backend::LoginItem>> items() override;
  /// Enabling writes the user's entry, or updates it without touching keys that others added, but for those
  /// that keep it from being started here. Disabling removes an entry of our own making, and hides one that
  /// others added keys to or that lies over a system's entry.
  Result<void> setEnabled(const std::string& label, bool isEnabled) override;

 private:
  Result<void> enable(const std::string& path);
  [[nodiscard]] Result<void> disable(const std::string& path, const std::string& fileName);
  [[nodiscard]] bool isInSystem(const std::string& fileName) const;

  AutostartFolders folders_;
  std::string program_;
  std::vector<std::string> desktops_;
};

}  // namespace vistrel::files
