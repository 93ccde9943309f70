#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/Result.h"

namespace vistrel::files {

/// The user's configuration folder (XDG Base Directory).
[[nodiscard]] std::string configurationFolder();

/// An environment variable; empty when it is unset.
[[nodiscard]] std::string environment(const char* name);

/// Creates a folder with its parents, for this user alone.
Result<void> makeFolders(const std::string& path);

/// The file, or its first `most` bytes; nothing when there is none. What is no regular file (a folder, a
/// pipe, a device) is an error, and never waited for.
Result<std::optional<std::string>> readFile(const std::string& path, std::size_t most = SIZE_MAX);

/// Puts a file of that content in the place of the old one, whole or not at all, for this user alone; a
/// symbolic link stays a link. Not for two at once.
Result<void> replaceFile(const std::string& path, const std::string& content);

/// What the last failed system call says, for a path.
[[nodiscard]] Error systemError(const std::string& path);

}  // namespace vistrel::files
