#include <map>
#include <string>
#include <string_view>

#include "linux/keyboard/DesktopShortcuts.h"
#include "linux/keyboard/SessionBus.h"

namespace vistrel::keyboard {

namespace {

constexpr const char* kService = "org.xfce.Xfconf";
constexpr const char* kPath = "/org/xfce/Xfconf";
constexpr const char* kChannel = "xfce4-keyboard-shortcuts";

using Properties = std::map<std::string, Glib<GVariant>>;

std::optional<Properties> readChannel() {
  const SessionBus bus;
  const auto answer =
      bus.call(kService, kPath, kService, "GetAllProperties", g_variant_new("(ss)", kChannel, "/"));
  if (!answer || g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(a{sv})")) == FALSE) return std::nullopt;
  const Glib<GVariant> table(g_variant_get_child_value(answer.get(), 0));
  Properties properties;
  for (gsize i = 0; i < g_variant_n_children(table.get()); ++i) {
    const gchar* name = nullptr;
    GVariant* value = nullptr;
    g_variant_get_child(table.get(), i, "{&sv}", &name, &value);
    properties.emplace(name, value);
  }
  return properties;
}

bool isTrue(const Properties& properties, const std::string& name) {
  const auto found = properties.find(name);
  return found != properties.end() &&
         g_variant_is_of_type(found->second.get(), G_VARIANT_TYPE_BOOLEAN) != FALSE &&
         g_variant_get_boolean(found->second.get()) != FALSE;
}

// A shortcut that was cleared keeps its name and loses its action.
bool hasAction(GVariant* value) {
  return g_variant_is_of_type(value, G_VARIANT_TYPE_STRING) != FALSE &&
         !std::string_view(g_variant_get_string(value, nullptr)).empty();
}

// "commands" start programs, "xfwm4" works windows. The user's own set, once there is one, stands for all.
void appendKind(const Properties& properties, const std::string& kind, Accelerators& to) {
  const bool isOwn = isTrue(properties, "/" + kind + "/custom/override");
  const std::string folder = "/" + kind + (isOwn ? "/custom/" : "/default/");
  for (const auto& [name, value] : properties) {
    if (!name.starts_with(folder) || !hasAction(value.get())) continue;
    const auto accelerator = parseGtkAccelerator(name.substr(folder.size()));
    if (accelerator) to.push_back(*accelerator);
  }
}

}  // namespace

std::optional<Accelerators> readXfceShortcuts() {
  const auto properties = readChannel();
  if (!properties) return std::nullopt;
  Accelerators found;
  for (const auto* kind : {"commands", "xfwm4"}) appendKind(*properties, kind, found);
  return found;
}

}  // namespace vistrel::keyboard
