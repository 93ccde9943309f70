#pragma once

#include <memory>
#include <string>

#include "backend/UserFiles.h"
#include "linux/Reactor.h"

namespace vistrel::files {

/// The preferences in "org.vistrel.Vistrel/preferences.json" of the user's configuration folder
/// (XDG Base Directory: `$XDG_CONFIG_HOME` when it is absolute, else `~/.config`). Written whole to a new
/// file, synced and renamed into place, under a lock on the folder. A disk may take its time for that, so it
/// happens on a thread, which lives while there is something to write. What was asked for meanwhile is
/// written with the next file. The end of this object waits ten seconds at most for what is under way.
class PreferencesFile final : public backend::UserFiles {
 public:
  explicit PreferencesFile(desktop::Reactor& reactor);
  PreferencesFile(desktop::Reactor& reactor, std::string folder);
  PreferencesFile(const PreferencesFile&) = delete;
  PreferencesFile& operator=(const PreferencesFile&) = delete;
  ~PreferencesFile() override;

  Result<std::optional<std::string>> readPreferences() override;
  void editPreferences(Edit edit, Edited edited) override;
  Result<std::optional<std::string>> setPreferencesAside(const std::string& unreadable) override;

 private:
  struct Shared;
  std::shared_ptr<Shared> shared_;
};

}  // namespace vistrel::files
