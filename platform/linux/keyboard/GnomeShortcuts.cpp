#include <string>
#include <string_view>

#include "linux/keyboard/DesktopShortcuts.h"
#include "linux/keyboard/SessionBus.h"

namespace vistrel::keyboard {

namespace {

using Texts = std::vector<std::string>;

constexpr const char* kWindowManager = "org.gnome.desktop.wm.keybindings";
constexpr const char* kMediaKeys = "org.gnome.settings-daemon.plugins.media-keys";
constexpr const char* kOwnBinding = "org.gnome.settings-daemon.plugins.media-keys.custom-keybinding";
constexpr const char* kOwnBindings = "custom-keybindings";
// Whole of key bindings, beside those above.
constexpr const char* kFurtherSchemas[] = {"org.gnome.shell.keybindings", "org.gnome.mutter.keybindings",
                                           "org.gnome.mutter.wayland.keybindings"};

Texts textsIn(GVariant* value) {
  if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING)) return {g_variant_get_string(value, nullptr)};
  Texts texts;
  if (!g_variant_is_of_type(value, G_VARIANT_TYPE_STRING_ARRAY)) return texts;
  for (gsize i = 0; i < g_variant_n_children(value); ++i) {
    const Glib<GVariant> child(g_variant_get_child_value(value, i));
    texts.emplace_back(g_variant_get_string(child.get(), nullptr));
  }
  return texts;
}

/// The settings of one schema; a schema that is not installed, or lacks a key, gives nothing.
class Settings {
 public:
  explicit Settings(const char* schema, const char* path = nullptr) {
    auto* source = g_settings_schema_source_get_default();
    if (source) schema_.reset(g_settings_schema_source_lookup(source, schema, TRUE));
    if (schema_) settings_.reset(g_settings_new_full(schema_.get(), nullptr, path));
  }
  [[nodiscard]] bool exist() const { return settings_ != nullptr; }
  [[nodiscard]] Texts texts(const char* key) const {
    if (!settings_ || g_settings_schema_has_key(schema_.get(), key) == FALSE) return {};
    const Glib<GVariant> value(g_settings_get_value(settings_.get(), key));
    return textsIn(value.get());
  }
  [[nodiscard]] Texts keys() const {
    Texts names;
    if (!schema_) return names;
    const Glib<gchar*> listed(g_settings_schema_list_keys(schema_.get()));
    for (gchar** name = listed.get(); *name; ++name) names.emplace_back(*name);
    return names;
  }

 private:
  Glib<GSettingsSchema> schema_;
  Glib<GSettings> settings_;
};

void append(const Texts& texts, Accelerators& to) {
  for (const auto& text : texts) {
    if (const auto accelerator = parseGtkAccelerator(text)) to.push_back(*accelerator);
  }
}

void appendAll(const Settings& settings, Accelerators& to) {
  for (const auto& key : settings.keys()) {
    if (key != kOwnBindings) append(settings.texts(key.c_str()), to);
  }
}

// A path that the library refuses ends the program.
bool isSettingsPath(std::string_view path) {
  return path.starts_with('/') && path.ends_with('/') && path.find("//") == std::string_view::npos;
}

}  // namespace

std::optional<Accelerators> readGnomeShortcuts() {
  const Settings windowManager(kWindowManager);
  if (!windowManager.exist()) return std::nullopt;
  Accelerators found;
  appendAll(windowManager, found);
  for (const auto* schema : kFurtherSchemas) appendAll(Settings(schema), found);
  append(Settings("org.gnome.mutter").texts("overlay-key"), found);
  const Settings mediaKeys(kMediaKeys);
  appendAll(mediaKeys, found);
  for (const auto& path : mediaKeys.texts(kOwnBindings)) {
    if (isSettingsPath(path)) append(Settings(kOwnBinding, path.c_str()).texts("binding"), found);
  }
  return found;
}

}  // namespace vistrel::keyboard
