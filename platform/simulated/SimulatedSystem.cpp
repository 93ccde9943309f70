#include "simulated/SimulatedSystem.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>

namespace vistrel::simulated {

Result<std::optional<std::string>> SimulatedUserFiles::readPreferences() {
  if (!readError.empty()) return Error{readError};
  return preferences;
}

void SimulatedUserFiles::editPreferences(Edit edit, Edited edited) {
  for (const auto& error : {readError, writeError}) {
    if (!error.empty()) return edited(Error{error});
  }
  auto wanted = edit(preferences);
  const auto aside = wanted ? std::nullopt : setPreferencesAside(*preferences).value();
  preferences = wanted ? std::move(wanted) : edit(std::nullopt);
  edited(aside);
}

Result<std::optional<std::string>> SimulatedUserFiles::setPreferencesAside(const std::string& unreadable) {
  if (preferences != unreadable) return std::optional<std::string>();
  setAside.push_back(unreadable);
  preferences.reset();
  return std::optional("preferences.json.unreadable-" + std::to_string(setAside.size()));
}

std::optional<std::string> SimulatedResources::read(const std::string& path) const {
  const std::string name = path.starts_with(directory_ + "/") ? path.substr(directory_.size() + 1) : path;
  if (const auto found = overrides.find(name); found != overrides.end()) return found->second;
  const std::ifstream file(path, std::ios::binary);
  if (!file || isDirectory(path)) return std::nullopt;
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

bool SimulatedResources::isDirectory(const std::string& path) const {
  const std::string name = path.starts_with(directory_ + "/") ? path.substr(directory_.size() + 1) : path;
  if (const auto found = overrides.find(name); found != overrides.end()) return found->second.has_value();
  return std::filesystem::is_directory(path);
}

Result<std::vector<backend::LoginItem>> SimulatedLoginItems::items() {
  if (!readError.empty()) return Error{readError};
  return entries;
}

Result<void> SimulatedLoginItems::setEnabled(const std::string& label, bool isEnabled) {
  if (!writeError.empty()) return Error{writeError};
  std::erase_if(entries, [&](const auto& item) { return item.label == label; });
  if (isEnabled) entries.push_back({label, true});
  return {};
}

namespace {
bool areSame(backend::HotKeyCombination a, backend::HotKeyCombination b) {
  return a.keyCode == b.keyCode && a.modifiers == b.modifiers;
}
}  // namespace

bool SimulatedHotKeys::grab(std::uint32_t token, backend::HotKeyCombination combination) {
  const auto isIt = [&](const auto& other) { return areSame(other, combination); };
  if (std::any_of(taken.begin(), taken.end(), isIt)) return false;
  grabs[token] = combination;
  return true;
}

bool SimulatedHotKeys::send(backend::HotKeyCombination combination, backend::HotKeyPhase phase) {
  const auto snapshot = grabs;
  bool isHeard = false;
  for (const auto& [token, grabbed] : snapshot) {
    if (!areSame(grabbed, combination) || !handler_) continue;
    isHeard = true;
    handler_(token, phase);
  }
  return isHeard;
}

bool SimulatedHotKeys::press(backend::HotKeyCombination combination) {
  const bool isHeard = send(combination, backend::HotKeyPhase::Pressed);
  return send(combination, backend::HotKeyPhase::Released) || isHeard;
}

SimulatedKeyboard::SimulatedKeyboard()
    : layout{{0, "a"},  {1, "s"},  {2, "d"},  {8, "c"},  {9, "v"},  {12, "q"}, {13, "w"},
             {14, "e"}, {15, "r"}, {17, "t"}, {45, "n"}, {46, "m"}, {18, "1"}, {27, "-"}} {}

std::optional<std::string> SimulatedKeyboard::displayCharacter(std::uint16_t keyCode) {
  if (!hasLayout) return std::nullopt;
  const auto found = layout.find(keyCode);
  return found == layout.end() ? std::string() : found->second;
}

bool SimulatedSession::openUrl(const std::string& url) {
  if (hasBrowser) openedUrls.push_back(url);
  return hasBrowser;
}

backend::SessionClient& SimulatedSession::client() const {
  if (!client_) fatalError("no application is running on the simulated desktop");
  return *client_;
}

}  // namespace vistrel::simulated
