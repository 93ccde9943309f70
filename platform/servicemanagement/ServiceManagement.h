#pragma once

#include <any>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vistrel {

/// Which jobs are meant: those that start with the user's session.
enum class SMDomain { UserLaunchd };

using JobDictionary = std::map<std::string, std::any>;

/// The jobs of the user's session, from the desktop's autostart folders: "Label" (text) each, and "OnDemand"
/// (true) for those that are enabled. None when the folders cannot be read. Asked anew on each call.
[[nodiscard]] std::optional<std::vector<JobDictionary>> SMCopyAllJobDictionaries(SMDomain domain);

/// Has the job of that label start this program with the session, or not. False when the desktop refuses.
bool SMLoginItemSetEnabled(const std::string& identifier, bool isEnabled);

}  // namespace vistrel
