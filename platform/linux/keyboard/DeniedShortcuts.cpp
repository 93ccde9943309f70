#include "linux/keyboard/DeniedShortcuts.h"

#include <unistd.h>

#include <sstream>

#include "base/Log.h"
#include "base/Program.h"
#include "linux/files/FileTools.h"

namespace vistrel::keyboard {

namespace {

constexpr std::size_t kLargest = 1 << 16;
constexpr const char* kName = "/denied-shortcuts";

}  // namespace

DeniedShortcuts::DeniedShortcuts() : folder_(files::configurationFolder() + "/" + program::kIdentifier) {
  const auto text = files::readFile(folder_ + kName, kLargest);
  if (!text || !text.value()) return;
  std::istringstream lines(*text.value());
  for (std::string line; std::getline(lines, line);) ids_.insert(line);
}

void DeniedShortcuts::insert(const std::string& id) {
  if (ids_.insert(id).second) write();
}

void DeniedShortcuts::remove(const std::string& id) {
  if (ids_.erase(id) > 0) write();
}

void DeniedShortcuts::write() const {
  const std::string path = folder_ + kName;
  if (ids_.empty()) {
    ::unlink(path.c_str());
    return;
  }
  std::string text;
  for (const auto& id : ids_) text += id + '\n';
  auto written = files::makeFolders(folder_);
  if (written) written = files::replaceFile(path, text);
  if (!written) Log::warning("Vistrel cannot keep which shortcut was denied: " + written.error().message);
}

}  // namespace vistrel::keyboard
