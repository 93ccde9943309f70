#include "linux/files/ResourceFolder.h"

#include <filesystem>

#include "base/Log.h"
#include "linux/files/FileTools.h"

namespace vistrel::files {

namespace fs = std::filesystem;

ResourceFolder::ResourceFolder() {
  std::error_code error;
  const fs::path executable = fs::read_symlink("/proc/self/exe", error);
  executable_ = executable.string();
  const fs::path beside = executable.parent_path() / "resources";
  const fs::path installed = executable.parent_path().parent_path() / "share" / "vistrel";
  directory_ = (fs::is_directory(beside, error) ? beside : installed).string();
}

std::optional<std::string> ResourceFolder::read(const std::string& path) const {
  const auto content = readFile(path);
  if (content) return content.value();
  Log::warning("vistrel: a part of the program cannot be read: " + content.error().message);
  return std::nullopt;
}

bool ResourceFolder::isDirectory(const std::string& path) const {
  std::error_code error;
  return fs::is_directory(path, error);
}

std::string ResourceFolder::preferredLanguage() const {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const std::string value = environment(name);
    if (value.empty()) continue;
    const std::string language = value.substr(0, value.find_first_of(".@"));
    return language == "C" || language == "POSIX" ? "" : language;
  }
  return "";
}

}  // namespace vistrel::files
