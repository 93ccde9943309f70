#pragma once

#include <optional>
#include <string>

#include "foundation/Result.h"

namespace vistrel::files {

/// The user's configuration folder (XDG Base Directory).
[[nodiscard]] std::string configurationFolder();

/// An environment variable; empty when it is unset.
[[nodiscard]] std::string environment(const char* name);

/// Creates a folder with its parents, for this user alone.
Result<void> makeFolders(const std::string& path);

/// The whole file; nothing when there is none.
Result<std::optional<std::string>> readFile(const std::string& path);

/// Puts a file of that content in the place of the old one, whole or not at all; a symbolic link stays a
/// link.
Result<void> replaceFile(const std::string& path, const std::string& content);

/// What the last failed system call says, for a path.
[[nodiscard]] Error systemError(const std::string& path);

}  // namespace vistrel::files
