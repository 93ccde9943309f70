#include "linux/files/Autostart.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <set>
#include <sstream>
#include <string_view>
#include <utility>

#include "base/Program.h"
#include "linux/files/DesktopEntry.h"
#include "linux/files/FileTools.h"

namespace vistrel::files {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kSuffix = ".desktop";
constexpr const char* kHidden = "Hidden";
// Each desktop's own switch; the others follow GNOME's.
constexpr std::array<const char*, 2> kSwitches = {"X-GNOME-Autostart-enabled", "X-MATE-Autostart-enabled"};
constexpr const char* kOnlyShowIn = "OnlyShowIn";
constexpr const char* kNotShowIn = "NotShowIn";
constexpr const char* kDefaultSystemFolders = "/etc/xdg";
// Far more than any entry needs; what is larger is none.
constexpr std::uintmax_t kLargestEntry = 1U << 20U;

constexpr std::array<std::string_view, 9> kOwnKeys = {"Type",    "Version", "Name",     "Comment", "Exec",
                                                      "TryExec", "Icon",    "Terminal", kHidden};

std::optional<DesktopEntry> readEntry(const std::string& path) {
  std::error_code error;
  // Whatever else bears such a name (a folder, a pipe) is never opened.
  if (!fs::is_regular_file(path, error) || fs::file_size(path, error) > kLargestEntry) return std::nullopt;
  const auto content = readFile(path);
  if (!content || !content.value()) return std::nullopt;
  return DesktopEntry::parse(*content.value());
}

bool isProgramThere(const DesktopEntry& entry) {
  const auto program = entry.value("TryExec");
  return !program || !program->starts_with('/') || ::access(program->c_str(), X_OK) == 0;
}

bool isSwitchedOn(const DesktopEntry& entry) {
  return !entry.boolean(kHidden).value_or(false) &&
         std::all_of(kSwitches.begin(), kSwitches.end(),
                     [&](const char* key) { return entry.boolean(key).value_or(true); });
}

/// The parts of a list, which `separator` ends or divides.
std::vector<std::string> partsOf(const std::string& list, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(list);
  for (std::string part; std::getline(stream, part, separator);)
    if (!part.empty()) parts.push_back(part);
  return parts;
}

/// Whether the list under the key names one of the desktops; none when there is no such list.
std::optional<bool> names(const DesktopEntry& entry, const char* key,
                          const std::vector<std::string>& desktops) {
  const auto list = entry.value(key);
  if (!list) return std::nullopt;
  const auto named = partsOf(*list, ';');
  return std::any_of(named.begin(), named.end(), [&](const std::string& name) {
    return std::find(desktops.begin(), desktops.end(), name) != desktops.end();
  });
}

bool isForOneOf(const DesktopEntry& entry, const std::vector<std::string>& desktops) {
  return names(entry, kOnlyShowIn, desktops).value_or(true) &&
         !names(entry, kNotShowIn, desktops).value_or(false);
}

bool startsSomething(const std::string& path, const std::vector<std::string>& desktops) {
  const auto entry = readEntry(path);
  return entry && isSwitchedOn(*entry) && isForOneOf(*entry, desktops) &&
         !entry->value("Exec").value_or("").empty() && isProgramThere(*entry);
}

/// The entries of a folder by file name; an error when it cannot be read. A folder that is missing is empty.
Result<std::set<std::string>> entriesIn(const std::string& folder) {
  std::set<std::string> names;
  std::error_code error;
  fs::directory_iterator entry(folder, error);
  if (error == std::errc::no_such_file_or_directory) return names;
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (name.size() > kSuffix.size() && name.ends_with(kSuffix)) names.insert(name);
  }
  if (error) return Error{folder + ": " + error.message()};
  return names;
}

bool hasForeignKeys(const DesktopEntry& entry) {
  const auto keys = entry.keys();
  return std::any_of(keys.begin(), keys.end(), [](const std::string& key) {
    return std::find(kOwnKeys.begin(), kOwnKeys.end(), key) == kOwnKeys.end();
  });
}

}  // namespace

AutostartFolders AutostartFolders::fromEnvironment() {
  AutostartFolders result{configurationFolder() + "/autostart", {}};
  std::string configured = environment("XDG_CONFIG_DIRS");
  if (configured.empty()) configured = kDefaultSystemFolders;
  for (const std::string& folder : partsOf(configured, ':'))
    if (folder.starts_with('/')) result.ofSystem.push_back(folder + "/autostart");
  return result;
}

Autostart::Autostart(AutostartFolders folders, std::string program, const std::string& desktops)
    : folders_(std::move(folders)), program_(std::move(program)), desktops_(partsOf(desktops, ':')) {}

Result<std::vector<backend::LoginItem>> Autostart::items() {
  std::vector<backend::LoginItem> found;
  std::set<std::string> seen;
  std::optional<Error> failure;
  std::vector<std::string> folders = folders_.ofSystem;
  folders.insert(folders.begin(), folders_.ofUser);
  for (const auto& folder : folders) {
    const auto names = entriesIn(folder);
    if (!names && !failure) failure = names.error();
    if (!names) continue;
    for (const auto& name : names.value()) {
      if (!seen.insert(name).second) continue;
      found.push_back({name.substr(0, name.size() - kSuffix.size()),
                       startsSomething((fs::path(folder) / name).string(), desktops_)});
    }
  }
  if (found.empty() && failure) return *failure;
  return found;
}

bool Autostart::isInSystem(const std::string& fileName) const {
  std::error_code error;
  return std::any_of(folders_.ofSystem.begin(), folders_.ofSystem.end(),
                     [&](const std::string& folder) { return fs::exists(folder + "/" + fileName, error); });
}

Result<void> Autostart::setEnabled(const std::string& label, bool isEnabled) {
  const std::string fileName = label + std::string(kSuffix);
  const std::string path = folders_.ofUser + "/" + fileName;
  return isEnabled ? enable(path) : disable(path, fileName);
}

Result<void> Autostart::enable(const std::string& path) {
  if (auto made = makeFolders(folders_.ofUser); !made) return made;
  DesktopEntry entry = readEntry(path).value_or(DesktopEntry());
  entry.set("Type", "Application");
  entry.set("Name", program::kName);
  entry.set("Comment", "A pocket mirror for the desktop");
  entry.set("Exec",
            "env " + std::string(program::kAutostartMark) + "=1 " + DesktopEntry::quotedArgument(program_));
  entry.set("TryExec", program_);
  entry.set("Icon", program::kIdentifier);
  entry.set("Terminal", "false");
  if (entry.value(kHidden)) entry.set(kHidden, "false");
  for (const char* key : kSwitches)
    if (entry.value(key)) entry.set(key, "true");
  for (const char* key : {kOnlyShowIn, kNotShowIn})
    if (!isForOneOf(entry, desktops_)) entry.remove(key);
  return replaceFile(path, entry.text());
}

Result<void> Autostart::disable(const std::string& path, const std::string& fileName) {
  auto entry = readEntry(path);
  const bool liesOverSystem = isInSystem(fileName);
  if (liesOverSystem || (entry && hasForeignKeys(*entry))) {
    if (!entry) entry.emplace();
    entry->set("Type", "Application");
    if (!entry->value("Name")) entry->set("Name", program::kName);
    entry->set(kHidden, "true");
    if (auto made = makeFolders(folders_.ofUser); !made) return made;
    return replaceFile(path, entry->text());
  }
  if (::unlink(path.c_str()) != 0 && errno != ENOENT && errno != ENOTDIR) return systemError(path);
  return {};
}

}  // namespace vistrel::files
