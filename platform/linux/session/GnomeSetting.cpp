#include "linux/session/GnomeSetting.h"

#include <gio/gio.h>

#include <utility>

namespace vistrel::session {

namespace {

// Asking for a schema or a key that is not installed would stop the program.
bool isInstalled(const char* schemaName, const char* key) {
  auto* source = g_settings_schema_source_get_default();
  if (!source) return false;
  GSettingsSchema* schema = g_settings_schema_source_lookup(source, schemaName, TRUE);
  if (!schema) return false;
  const bool hasKey = g_settings_schema_has_key(schema, key);
  g_settings_schema_unref(schema);
  return hasKey;
}

}  // namespace

struct GnomeSetting::Handle {
  Handle(const char* schema, const char* name) : settings(g_settings_new(schema)), key(name) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() { g_object_unref(settings); }

  GSettings* settings;
  const char* key;
};

std::unique_ptr<GnomeSetting> GnomeSetting::open(const char* schema, const char* key,
                                                 std::function<void()> handler) {
  if (!isInstalled(schema, key)) return nullptr;
  return std::unique_ptr<GnomeSetting>(
      new GnomeSetting(std::make_unique<Handle>(schema, key), std::move(handler)));
}

GnomeSetting::GnomeSetting(std::unique_ptr<Handle> handle, std::function<void()> handler)
    : handle_(std::move(handle)), handler_(std::move(handler)) {
  const auto changed = +[](GSettings* /*settings*/, const char* /*key*/, gpointer self) {
    static_cast<GnomeSetting*>(self)->handler_();
  };
  const std::string signal = std::string("changed::") + handle_->key;
  g_signal_connect(handle_->settings, signal.c_str(), G_CALLBACK(changed), this);
}

GnomeSetting::~GnomeSetting() { g_signal_handlers_disconnect_by_data(handle_->settings, this); }

std::string GnomeSetting::text() const {
  char* value = g_settings_get_string(handle_->settings, handle_->key);
  std::string text(value);
  g_free(value);
  return text;
}

bool GnomeSetting::isOn() const { return g_settings_get_boolean(handle_->settings, handle_->key); }

}  // namespace vistrel::session
