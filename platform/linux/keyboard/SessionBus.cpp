#include "linux/keyboard/SessionBus.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace vistrel::keyboard {

namespace {

constexpr int kPatience = 500;  // milliseconds; the user waits for the answer to a key press

// Asking the library for a bus that is not there makes it start one.
bool hasBus() {
  if (std::getenv("DBUS_SESSION_BUS_ADDRESS")) return true;
  const char* folder = std::getenv("XDG_RUNTIME_DIR");
  std::error_code failure;
  return folder && std::filesystem::exists(std::string(folder) + "/bus", failure);
}

}  // namespace

SessionBus::SessionBus() {
  if (!hasBus()) return;
  connection_.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
  // By default the program would end together with the bus.
  if (connection_) g_dbus_connection_set_exit_on_close(connection_.get(), FALSE);
}

Glib<GVariant> SessionBus::call(const char* service, const char* path, const char* interface,
                                const char* method, GVariant* arguments) const {
  const Glib<GVariant> kept(g_variant_ref_sink(arguments));
  if (!connection_) return nullptr;
  return Glib<GVariant>(g_dbus_connection_call_sync(connection_.get(), service, path, interface, method,
                                                    arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, kPatience,
                                                    nullptr, nullptr));
}

bool SessionBus::hasOwner(const char* service) const {
  const auto answer = call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                           "NameHasOwner", g_variant_new("(s)", service));
  gboolean isOwned = FALSE;
  if (answer && g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(b)"))) {
    g_variant_get(answer.get(), "(b)", &isOwned);
  }
  return isOwned != FALSE;
}

}  // namespace vistrel::keyboard
