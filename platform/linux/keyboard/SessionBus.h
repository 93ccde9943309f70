#pragma once

#include <gio/gio.h>

#include <memory>
#include <string>
#include <vector>

namespace vistrel::keyboard {

/// Gives back what GLib handed out.
struct GlibFree {
  void operator()(GObject* object) const { g_object_unref(object); }
  void operator()(GDBusConnection* connection) const { g_object_unref(connection); }
  void operator()(GMainContext* context) const { g_main_context_unref(context); }
  void operator()(GSettings* settings) const { g_object_unref(settings); }
  void operator()(GSettingsSchema* schema) const { g_settings_schema_unref(schema); }
  void operator()(GVariant* value) const { g_variant_unref(value); }
  void operator()(gchar** texts) const { g_strfreev(texts); }
};
template <class T>
using Glib = std::unique_ptr<T, GlibFree>;

/// The session bus, if there is one; none is started.
class SessionBus {
 public:
  SessionBus();
  /// The answer to a call; null when nobody gives it within half a second.
  [[nodiscard]] Glib<GVariant> call(const char* service, const char* path, const char* interface,
                                    const char* method, GVariant* arguments) const;
  /// The answers to the same call, without arguments, of several objects, all of which are asked before the
  /// first answer is waited for.
  [[nodiscard]] std::vector<Glib<GVariant>> callEach(const char* service,
                                                     const std::vector<std::string>& paths,
                                                     const char* interface, const char* method) const;
  /// True when somebody goes by that name.
  [[nodiscard]] bool hasOwner(const char* service) const;

 private:
  Glib<GDBusConnection> connection_;
};

}  // namespace vistrel::keyboard
