#include "linux/files/LockedFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <thread>
#include <utility>

#include "linux/files/FileTools.h"

namespace vistrel::files {

namespace fs = std::filesystem;
using desktop::FileDescriptor;

namespace {

constexpr const char* kAside = ".unreadable-";

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

// The highest of those that are there and no more counted: a gap may be somebody's own doing.
std::uint64_t highestAside(const fs::path& path) {
  const std::string start = path.filename().string() + kAside;
  std::uint64_t highest = 0;
  std::error_code error;
  for (fs::directory_iterator entry(path.parent_path(), error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    std::uint64_t number = 0;
    if (!name.starts_with(start)) continue;
    const auto read = std::from_chars(name.data() + start.size(), name.data() + name.size(), number);
    if (read.ec == std::errc() && number < UINT64_MAX) highest = std::max(highest, number);
  }
  return highest;
}

}  // namespace

Result<LockedFile> LockedFile::open(const std::string& folder, const std::string& name,
                                    std::size_t tooLarge) {
  auto lock = lockFolder(folder);
  if (!lock) return lock.error();
  return LockedFile(std::move(lock).value(), folder + "/" + name, tooLarge);
}

Result<std::optional<std::string>> LockedFile::read() const { return readFile(path_, tooLarge_); }

Result<void> LockedFile::replace(const std::string& content) const {
  if (content.size() >= tooLarge_) return Error{path_ + ": would be larger than 1 MiB"};
  return replaceFile(path_, content);
}

Result<std::string> LockedFile::setAside() const {
  const std::string aside = path_ + kAside + std::to_string(highestAside(path_) + 1);
  if (::rename(path_.c_str(), aside.c_str()) != 0) return systemError(path_);
  return aside;
}

}  // namespace vistrel::files
