#include "linux/files/PreferencesFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>
#include <utility>

#include "base/Program.h"
#include "linux/FileDescriptor.h"
#include "linux/files/FileTools.h"

namespace vistrel::files {

using desktop::FileDescriptor;

namespace {

constexpr int kMostSetAside = 1000;

// Another process of ours holds the lock for a moment; one that hangs may not hold us up.
constexpr std::chrono::milliseconds kLockPatience{200};
constexpr std::chrono::milliseconds kBetweenAttempts{5};

// The folder itself is what is locked, so that no second file is needed.
Result<FileDescriptor> lockFolder(const std::string& folder) {
  FileDescriptor handle(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!handle) return systemError(folder);
  const auto deadline = std::chrono::steady_clock::now() + kLockPatience;
  while (::flock(handle.get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) return systemError(folder);
    if (std::chrono::steady_clock::now() >= deadline)
      return Error{folder + ": another process has locked it for too long"};
    std::this_thread::sleep_for(kBetweenAttempts);
  }
  return handle;
}

bool exists(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0;
}

}  // namespace

PreferencesFile::PreferencesFile() : PreferencesFile(configurationFolder() + "/" + program::kIdentifier) {}

PreferencesFile::PreferencesFile(std::string folder) : folder_(std::move(folder)) {}

Result<std::optional<std::string>> PreferencesFile::readPreferences() { return readFile(path(), kTooLarge); }

Result<void> PreferencesFile::editPreferences(const Edit& edit) {
  if (auto made = makeFolders(folder_); !made) return made;
  const auto lock = lockFolder(folder_);
  if (!lock) return lock.error();
  const auto present = readPreferences();
  if (!present) return present.error();
  const auto wanted = edit(present.value());
  if (!wanted || wanted == present.value()) return {};
  if (wanted->size() >= kTooLarge) return Error{path() + ": would be larger than 1 MiB"};
  return replaceFile(path(), *wanted);
}

Result<std::optional<std::string>> PreferencesFile::setPreferencesAside(const std::string& unreadable) {
  const auto lock = lockFolder(folder_);
  if (!lock) return lock.error();
  const auto present = readPreferences();
  if (!present) return present.error();
  if (present.value() != unreadable) return std::optional<std::string>();
  for (int i = 1; i <= kMostSetAside; ++i) {
    const std::string aside = path() + ".unreadable-" + std::to_string(i);
    if (exists(aside)) continue;
    if (::rename(path().c_str(), aside.c_str()) != 0) return systemError(path());
    return std::optional(aside);
  }
  return Error{folder_ + ": too many unreadable files were set aside"};
}

}  // namespace vistrel::files
