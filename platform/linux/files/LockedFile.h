#pragma once

#include <optional>
#include <string>

#include "base/Result.h"
#include "linux/FileDescriptor.h"

namespace vistrel::files {

/// A file of the user's that no other process of ours changes while this lives: the folder that it is in is
/// locked. May be used on any one thread.
class LockedFile {
 public:
  /// Waits for another process 200 ms at most.
  static Result<LockedFile> open(const std::string& folder, const std::string& name, std::size_t tooLarge);

  /// Nothing when there is no file.
  [[nodiscard]] Result<std::optional<std::string>> read() const;
  /// Refuses what reaches the size that is too large.
  [[nodiscard]] Result<void> replace(const std::string& content) const;
  /// Renames the file, and tells what it is called now.
  [[nodiscard]] Result<std::string> setAside() const;

 private:
  LockedFile(desktop::FileDescriptor lock, std::string path, std::size_t tooLarge)
      : lock_(std::move(lock)), path_(std::move(path)), tooLarge_(tooLarge) {}

  desktop::FileDescriptor lock_;
  std::string path_;
  std::size_t tooLarge_;
};

}  // namespace vistrel::files
