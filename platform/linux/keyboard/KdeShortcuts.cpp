#include <cstddef>
#include <sstream>
#include <string>
#include <string_view>

#include "base/Program.h"
#include "linux/files/FileTools.h"
#include "linux/keyboard/DesktopShortcuts.h"

namespace vistrel::keyboard {

namespace {

// KDE's own is some tens of kilobytes.
constexpr std::size_t kLargest = 1 << 20;

/// The part of a value up to its first comma: the shortcuts in force, with tabs (written "\t") between; the
/// default and a description follow. "\\," is a comma of the text and "\\\\" a backslash.
std::string shortcutsInForce(std::string_view value) {
  std::string text;
  for (std::size_t i = 0; i < value.size() && value[i] != ','; ++i) {
    if (value[i] != '\\' || i + 1 == value.size()) {
      text += value[i];
      continue;
    }
    const char escaped = value[++i];
    text += escaped == 't' ? '\t' : escaped;
  }
  return text;
}

void appendLine(std::string_view line, Accelerators& to) {
  const auto equals = line.find('=');
  if (line.starts_with('[') || line.starts_with("_k_") || equals == std::string_view::npos) return;
  std::istringstream shortcuts(shortcutsInForce(line.substr(equals + 1)));
  for (std::string shortcut; std::getline(shortcuts, shortcut, '\t');) {
    if (const auto accelerator = parseQtAccelerator(shortcut)) to.push_back(*accelerator);
  }
}

// What the portal has bound for Vistrel is no one else's; without an application id KDE files it under the
// portal's session.
bool isOurs(std::string_view group) {
  return group == std::string("[") + program::kIdentifier + "]" || group == "[token_vistrel]";
}

}  // namespace

Accelerators parseKdeShortcuts(const std::string& text) {
  Accelerators found;
  std::istringstream lines(text);
  bool isInOurs = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with('[')) isInOurs = isOurs(line);
    if (!isInOurs) appendLine(line, found);
  }
  return found;
}

std::optional<Accelerators> readKdeShortcuts() {
  const auto text = files::readFile(files::configurationFolder() + "/kglobalshortcutsrc", kLargest);
  if (!text || !text.value()) return std::nullopt;
  return parseKdeShortcuts(*text.value());
}

}  // namespace vistrel::keyboard
