#include "linux/files/ResourceFolder.h"

#include <libintl.h>

#include <filesystem>

#include "base/Log.h"
#include "linux/files/FileTools.h"

namespace vistrel::files {

namespace fs = std::filesystem;

namespace {
constexpr const char* kCatalogue = "vistrel";
}  // namespace

ResourceFolder::ResourceFolder() {
  std::error_code error;
  const fs::path executable = fs::read_symlink("/proc/self/exe", error);
  executable_ = executable.string();
  const fs::path beside = executable.parent_path() / "resources";
  const fs::path installed = executable.parent_path().parent_path() / "share" / "vistrel";
  const bool isInstalled = !fs::is_directory(beside, error);
  directory_ = (isInstalled ? installed : beside).string();
  const fs::path catalogues = (isInstalled ? installed.parent_path() : executable.parent_path()) / "locale";
  bindtextdomain(kCatalogue, catalogues.c_str());
  bind_textdomain_codeset(kCatalogue, "UTF-8");
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

std::string ResourceFolder::translation(const std::string& text) const {
  // The empty text stands for the catalogue's own head.
  return text.empty() ? text : dgettext(kCatalogue, text.c_str());
}

}  // namespace vistrel::files
