#include "linux/files/FileTools.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "linux/FileDescriptor.h"

namespace vistrel::files {

using desktop::FileDescriptor;

namespace {

constexpr mode_t kPrivateFolder = 0700;
constexpr mode_t kFileMode = 0600;

bool writeAll(int file, const std::string& content) {
  std::size_t done = 0;
  while (done < content.size()) {
    const ssize_t n = ::write(file, content.data() + done, content.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    done += static_cast<std::size_t>(n);
  }
  return true;
}

// A link that leads nowhere yet is followed once, to where the file shall be.
std::string resolved(const std::string& path) {
  std::error_code error;
  auto target = std::filesystem::weakly_canonical(path, error);
  if (error) return path;
  const auto link = std::filesystem::read_symlink(target, error);
  return error ? target.string() : (target.parent_path() / link).string();
}

// Of its own user's alone. Bears one name, so that the leftover of a process that was killed is written over.
FileDescriptor makeTemporary(const std::string& path) {
  ::unlink(path.c_str());
  return FileDescriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode));
}

void syncFolderOf(const std::string& path) {
  const FileDescriptor folder(
      ::open(std::filesystem::path(path).parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder) ::fsync(folder.get());
}

Result<void> writeAndRename(FileDescriptor file, const std::string& temporary, const std::string& target,
                            const std::string& content) {
  if (!writeAll(file.get(), content) || ::fsync(file.get()) != 0) return systemError(target);
  if (::rename(temporary.c_str(), target.c_str()) != 0) return systemError(target);
  syncFolderOf(target);
  return {};
}

}  // namespace

Error systemError(const std::string& path) { return {path + ": " + std::strerror(errno)}; }

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

std::string configurationFolder() {
  std::string configured = environment("XDG_CONFIG_HOME");
  // A relative path is invalid and to be ignored.
  if (configured.starts_with("/")) return configured;
  return environment("HOME") + "/.config";
}

Result<void> makeFolders(const std::string& path) {
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const std::string part = path.substr(0, end);
    if (::mkdir(part.c_str(), kPrivateFolder) != 0 && errno != EEXIST) return systemError(part);
    if (end == std::string::npos) return {};
  }
}

Result<std::optional<std::string>> readFile(const std::string& path, std::size_t most) {
  // Without the flags the opening of a pipe waits for a writer, and a terminal would become ours.
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!file && errno == ENOENT) return std::optional<std::string>();
  if (!file) return systemError(path);
  struct stat status{};
  if (::fstat(file.get(), &status) != 0) return systemError(path);
  if (!S_ISREG(status.st_mode)) return Error{path + ": not a regular file"};
  std::string content;
  char buffer[4096];
  while (content.size() < most) {
    const ssize_t n = ::read(file.get(), buffer, std::min(sizeof buffer, most - content.size()));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return systemError(path);
    if (n == 0) break;
    content.append(buffer, static_cast<std::size_t>(n));
  }
  return std::optional(content);
}

Result<void> replaceFile(const std::string& path, const std::string& content) {
  const std::string target = resolved(path);
  const std::string temporary = target + ".new";
  FileDescriptor file = makeTemporary(temporary);
  if (!file) return systemError(target);
  auto written = writeAndRename(std::move(file), temporary, target, content);
  if (!written) ::unlink(temporary.c_str());
  return written;
}

}  // namespace vistrel::files
