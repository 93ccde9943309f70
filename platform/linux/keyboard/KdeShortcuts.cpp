#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "linux/files/FileTools.h"
#include "linux/keyboard/DesktopShortcuts.h"
#include "linux/keyboard/KdeComponents.h"
#include "linux/keyboard/SessionBus.h"

namespace vistrel::keyboard {

namespace {

constexpr const char* kService = "org.kde.kglobalaccel";

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

// What the portal has bound for Vistrel is no one else's.
bool isOurs(std::string_view component) {
  return std::find(kOurKdeComponents.begin(), kOurKdeComponents.end(), component) != kOurKdeComponents.end();
}

bool opensOurs(std::string_view line) {
  return line.ends_with(']') && isOurs(line.substr(1, line.size() - 2));
}

std::vector<std::string> componentsOf(const SessionBus& bus) {
  std::vector<std::string> paths;
  const auto answer =
      bus.call(kService, "/kglobalaccel", "org.kde.KGlobalAccel", "allComponents", g_variant_new("()"));
  if (!answer || g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(ao)")) == FALSE) return paths;
  const Glib<GVariant> list(g_variant_get_child_value(answer.get(), 0));
  for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
    const Glib<GVariant> path(g_variant_get_child_value(list.get(), i));
    paths.emplace_back(g_variant_get_string(path.get(), nullptr));
  }
  return paths;
}

/// Of one action: its name, its component and its context, each with a title; its shortcuts, and the
/// defaults.
void appendAction(GVariant* action, Accelerators& to) {
  const gchar* component = nullptr;
  GVariant* shortcuts = nullptr;
  g_variant_get(action, "(&s&s&s&s&s&s@ai@ai)", nullptr, nullptr, &component, nullptr, nullptr, nullptr,
                &shortcuts, nullptr);
  const Glib<GVariant> kept(shortcuts);
  if (isOurs(component)) return;
  for (gsize i = 0; i < g_variant_n_children(shortcuts); ++i) {
    gint32 number = 0;
    g_variant_get_child(shortcuts, i, "i", &number);
    const auto accelerator = acceleratorOfQtNumber(static_cast<std::uint32_t>(number));
    if (accelerator) to.push_back(*accelerator);
  }
}

// Asked only where it runs, or the question would start it.
std::optional<Accelerators> askKde() {
  const SessionBus bus;
  if (!bus.hasOwner(kService)) return std::nullopt;
  const auto components = componentsOf(bus);
  if (components.empty()) return std::nullopt;
  Accelerators found;
  for (const auto& answer :
       bus.callEach(kService, components, "org.kde.kglobalaccel.Component", "allShortcutInfos")) {
    if (!answer || g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(a(ssssssaiai))")) == FALSE) return {};
    const Glib<GVariant> actions(g_variant_get_child_value(answer.get(), 0));
    for (gsize i = 0; i < g_variant_n_children(actions.get()); ++i) {
      appendAction(Glib<GVariant>(g_variant_get_child_value(actions.get(), i)).get(), found);
    }
  }
  return found;
}

}  // namespace

Accelerators parseKdeShortcuts(const std::string& text) {
  Accelerators found;
  std::istringstream lines(text);
  bool isInOurs = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with('[')) isInOurs = opensOurs(line);
    if (!isInOurs) appendLine(line, found);
  }
  return found;
}

// The file is older than what the service knows, and lacks what is as it was installed.
std::optional<Accelerators> readKdeShortcuts() {
  if (auto told = askKde()) return told;
  const auto text = files::readFile(files::configurationFolder() + "/kglobalshortcutsrc", kLargest);
  if (!text || !text.value()) return std::nullopt;
  return parseKdeShortcuts(*text.value());
}

}  // namespace vistrel::keyboard
