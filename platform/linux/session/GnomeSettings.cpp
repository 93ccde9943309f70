#include "linux/session/GnomeSettings.h"

#include <gio/gio.h>

#include <string>
#include <utility>

namespace vistrel::session {

namespace {

constexpr const char* kSchema = "org.gnome.desktop.interface";
constexpr const char* kKey = "color-scheme";

// Asking for a schema or a key that is not installed would stop the program.
bool isInstalled() {
  auto* source = g_settings_schema_source_get_default();
  if (!source) return false;
  GSettingsSchema* schema = g_settings_schema_source_lookup(source, kSchema, TRUE);
  if (!schema) return false;
  const bool hasKey = g_settings_schema_has_key(schema, kKey);
  g_settings_schema_unref(schema);
  return hasKey;
}

}  // namespace

struct GnomeSettings::Handle {
  GSettings* settings = g_settings_new(kSchema);
  Handle() = default;
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() { g_object_unref(settings); }
};

std::unique_ptr<GnomeSettings> GnomeSettings::open(std::function<void()> handler) {
  if (!isInstalled()) return nullptr;
  return std::unique_ptr<GnomeSettings>(new GnomeSettings(std::make_unique<Handle>(), std::move(handler)));
}

GnomeSettings::GnomeSettings(std::unique_ptr<Handle> handle, std::function<void()> handler)
    : handle_(std::move(handle)), handler_(std::move(handler)) {
  const auto changed = +[](GSettings* /*settings*/, const char* /*key*/, gpointer self) {
    static_cast<GnomeSettings*>(self)->handler_();
  };
  g_signal_connect(handle_->settings, "changed::color-scheme", G_CALLBACK(changed), this);
}

GnomeSettings::~GnomeSettings() { g_signal_handlers_disconnect_by_data(handle_->settings, this); }

std::optional<bool> GnomeSettings::prefersDark() const {
  char* value = g_settings_get_string(handle_->settings, kKey);
  const std::string scheme(value);
  g_free(value);
  if (scheme != "prefer-dark" && scheme != "prefer-light") return std::nullopt;
  return scheme == "prefer-dark";
}

}  // namespace vistrel::session
