#include "linux/tray/TrayHostWatch.h"

#include <xcb/xcb.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QGuiApplication>
#include <cstdlib>
#include <string>
#include <utility>

namespace vistrel::tray {

namespace {

using std::chrono::milliseconds;

constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";
constexpr const char* kWatcherPath = "/StatusNotifierWatcher";
// In milliseconds.
constexpr int kAnswerPatience = 250;
// A panel that speaks both ways announces the embedding first, and is gone for a while when it is restarted.
constexpr milliseconds kPatience{1000};

xcb_connection_t* connection() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 ? x11->connection() : nullptr;
}

template <class T>
std::unique_ptr<T, decltype(&std::free)> owned(T* reply) {
  return {reply, &std::free};
}

xcb_atom_t atom(const std::string& name) {
  const auto cookie = xcb_intern_atom(connection(), 0, name.size(), name.c_str());
  const auto reply = owned(xcb_intern_atom_reply(connection(), cookie, nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

bool hasEmbeddingHost() {
  const auto cookie = xcb_get_selection_owner(connection(), atom("_NET_SYSTEM_TRAY_S0"));
  const auto reply = owned(xcb_get_selection_owner_reply(connection(), cookie, nullptr));
  return reply && reply->owner != XCB_NONE;
}

// A watcher may be there before any host is, and Qt asks it once for the whole process: not too early.
bool hasBusHost() {
  const auto bus = QDBusConnection::sessionBus();
  if (!bus.interface() || !bus.interface()->isServiceRegistered(kWatcher)) return false;
  auto question =
      QDBusMessage::createMethodCall(kWatcher, kWatcherPath, "org.freedesktop.DBus.Properties", "Get");
  question << kWatcher << "IsStatusNotifierHostRegistered";
  const QDBusReply<QVariant> answer = bus.call(question, QDBus::Block, kAnswerPatience);
  return answer.isValid() && answer.value().toBool();
}

TrayHost present() {
  if (hasBusHost()) return TrayHost::Bus;
  return hasEmbeddingHost() ? TrayHost::Embedding : TrayHost::None;
}

}  // namespace

TrayHostWatch::TrayHostWatch(std::function<void(TrayHost)> handler)
    : handler_(std::move(handler)),
      busHosts_(kWatcher, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForOwnerChange) {
  QDBusConnection::sessionBus().connect(kWatcher, kWatcherPath, kWatcher, "StatusNotifierHostRegistered",
                                        this, SLOT(look()));
  QObject::connect(&busHosts_, &QDBusServiceWatcher::serviceOwnerChanged, [this] { look(); });
  qApp->installNativeEventFilter(this);
  look();
}

TrayHostWatch::~TrayHostWatch() { qApp->removeNativeEventFilter(this); }

// A new owner of a manager selection announces itself to the root window (ICCCM 2.8).
bool TrayHostWatch::nativeEventFilter(const QByteArray& /*type*/, void* message, qintptr* /*result*/) {
  const auto* event = static_cast<xcb_generic_event_t*>(message);
  if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE) return false;
  static const xcb_atom_t manager = atom("MANAGER");
  if (static_cast<xcb_client_message_event_t*>(message)->type == manager) look();
  return false;
}

void TrayHostWatch::look() {
  const TrayHost host = present();
  settling_.reset();
  if (host == TrayHost::None || host == known_) return;
  const bool isSure = host == TrayHost::Bus || !QDBusConnection::sessionBus().isConnected();
  settling_ = std::make_unique<qt::SingleShot>(isSure ? milliseconds(0) : kPatience, [this] { settle(); });
}

void TrayHostWatch::settle() {
  const TrayHost host = present();
  if (host == TrayHost::None || host == known_) return;
  known_ = host;
  handler_(host);
}

}  // namespace vistrel::tray
