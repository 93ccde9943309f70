#include "linux/keyboard/SessionBus.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>

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

using Answer = std::optional<Glib<GVariant>>;  // null in it when there was none in time

void answered(GObject* connection, GAsyncResult* result, gpointer answer) {
  auto* bus = reinterpret_cast<GDBusConnection*>(connection);
  static_cast<Answer*>(answer)->emplace(g_dbus_connection_call_finish(bus, result, nullptr));
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

// In a context of its own, so that nothing else of the program runs meanwhile.
std::vector<Glib<GVariant>> SessionBus::callEach(const char* service, const std::vector<std::string>& paths,
                                                 const char* interface, const char* method) const {
  if (!connection_) return {};
  const Glib<GMainContext> context(g_main_context_new());
  g_main_context_push_thread_default(context.get());
  std::vector<Answer> answers(paths.size());
  for (std::size_t i = 0; i < paths.size(); ++i) {
    g_dbus_connection_call(connection_.get(), service, paths[i].c_str(), interface, method, nullptr, nullptr,
                           G_DBUS_CALL_FLAGS_NONE, kPatience, nullptr, answered, &answers[i]);
  }
  const auto hasCome = [](const Answer& answer) { return answer.has_value(); };
  while (!std::all_of(answers.begin(), answers.end(), hasCome)) g_main_context_iteration(context.get(), TRUE);
  g_main_context_pop_thread_default(context.get());
  std::vector<Glib<GVariant>> result;
  result.reserve(answers.size());
  for (auto& answer : answers) result.push_back(std::move(*answer));
  return result;
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
