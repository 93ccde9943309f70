#pragma once

#include <string>

#include "backend/UserFiles.h"

namespace vistrel::files {

/// The preferences in "org.vistrel.Vistrel/preferences.json" of the user's configuration folder
/// (XDG Base Directory: `$XDG_CONFIG_HOME` when it is absolute, else `~/.config`). Written whole to a new
/// file, synced and renamed into place, under a lock on the folder.
class PreferencesFile final : public backend::UserFiles {
 public:
  PreferencesFile();
  explicit PreferencesFile(std::string folder);

  Result<std::optional<std::string>> readPreferences() override;
  Result<void> editPreferences(const Edit& edit) override;
  Result<std::optional<std::string>> setPreferencesAside(const std::string& unreadable) override;

 private:
  [[nodiscard]] std::string path() const { return folder_ + "/preferences.json"; }
  std::string folder_;
};

}  // namespace vistrel::files
