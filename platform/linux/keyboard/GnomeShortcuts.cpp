#include <string>
#include <string_view>

#include "linux/keyboard/DesktopShortcuts.h"
#include "linux/keyboard/SessionBus.h"

namespace vistrel::keyboard {

namespace {

using Texts = std::vector<std::string>;

/// Where a desktop of GNOME's descent keeps its shortcuts.
struct Places {
  const char* windowManager;         ///< without it the desktop is not installed
  std::vector<const char*> further;  ///< whole schemas of key bindings, beside that one
  const char* ownList;               ///< the schema that lists the user's own bindings
  const char* ownKey;                ///< its key, which is no binding
  const char* ownBinding;            ///< the schema of one of them
  std::string ownFolder;             ///< before the names in the list; empty where they are paths
};

Places gnomePlaces() {
  return {.windowManager = "org.gnome.desktop.wm.keybindings",
          .further = {"org.gnome.shell.keybindings", "org.gnome.mutter.keybindings",
                      "org.gnome.mutter.wayland.keybindings"},
          .ownList = "org.gnome.settings-daemon.plugins.media-keys",
          .ownKey = "custom-keybindings",
          .ownBinding = "org.gnome.settings-daemon.plugins.media-keys.custom-keybinding",
          .ownFolder = {}};
}

Places cinnamonPlaces() {
  return {.windowManager = "org.cinnamon.desktop.keybindings.wm",
          .further = {"org.cinnamon.desktop.keybindings.media-keys"},
          .ownList = "org.cinnamon.desktop.keybindings",
          .ownKey = "custom-list",
          .ownBinding = "org.cinnamon.desktop.keybindings.custom-keybinding",
          .ownFolder = "/org/cinnamon/desktop/keybindings/custom-keybindings/"};
}

// The user's own are listed nowhere.
Places matePlaces() {
  return {.windowManager = "org.mate.Marco.window-keybindings",
          .further = {"org.mate.Marco.global-keybindings"},
          .ownList = "org.mate.SettingsDaemon.plugins.media-keys",
          .ownKey = "",
          .ownBinding = "",
          .ownFolder = {}};
}

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

void appendAll(const Settings& settings, Accelerators& to, std::string_view noBinding = {}) {
  for (const auto& key : settings.keys()) {
    if (key != noBinding) append(settings.texts(key.c_str()), to);
  }
}

// A path that the library refuses ends the program.
bool isSettingsPath(std::string_view path) {
  return path.starts_with('/') && path.ends_with('/') && path.find("//") == std::string_view::npos;
}

std::optional<Accelerators> read(const Places& places) {
  const Settings windowManager(places.windowManager);
  if (!windowManager.exist()) return std::nullopt;
  Accelerators found;
  appendAll(windowManager, found);
  for (const auto* schema : places.further) appendAll(Settings(schema), found);
  const Settings own(places.ownList);
  appendAll(own, found, places.ownKey);
  for (const auto& name : own.texts(places.ownKey)) {
    const std::string path = places.ownFolder.empty() ? name : places.ownFolder + name + "/";
    if (isSettingsPath(path)) append(Settings(places.ownBinding, path.c_str()).texts("binding"), found);
  }
  return found;
}

}  // namespace

std::optional<Accelerators> readGnomeShortcuts() {
  auto found = read(gnomePlaces());
  if (found) append(Settings("org.gnome.mutter").texts("overlay-key"), *found);
  return found;
}

std::optional<Accelerators> readCinnamonShortcuts() { return read(cinnamonPlaces()); }

std::optional<Accelerators> readMateShortcuts() { return read(matePlaces()); }

}  // namespace vistrel::keyboard
