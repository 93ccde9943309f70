#include "linux/tray/TrayHostWatch.h"

#include <xcb/xcb.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <utility>

#include "linux/qt/X11Toolkit.h"
#include "linux/x11/Requests.h"

namespace vistrel::tray {

namespace {

using std::chrono::milliseconds;

constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";
constexpr const char* kWatcherPath = "/StatusNotifierWatcher";
// A panel that speaks both ways announces the embedding first, and is gone for a while when it is restarted.
constexpr milliseconds kPatience{1000};

bool hasEmbeddingHost() { return x11::isOwned(qt::toolkitConnection(), "_NET_SYSTEM_TRAY_S0"); }

bool hasWatcher() {
  const auto bus = QDBusConnection::sessionBus();
  return bus.interface() && bus.interface()->isServiceRegistered(kWatcher);
}

QDBusPendingCall askWatcher() {
  auto question =
      QDBusMessage::createMethodCall(kWatcher, kWatcherPath, "org.freedesktop.DBus.Properties", "Get");
  question << kWatcher << "IsStatusNotifierHostRegistered";
  return QDBusConnection::sessionBus().asyncCall(question);
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
  static const xcb_atom_t manager = x11::atomOf(qt::toolkitConnection(), "MANAGER");
  if (static_cast<xcb_client_message_event_t*>(message)->type == manager) look();
  return false;
}

// A watcher may be there before any host is, and at a busy login it may take its time: no answer is none, and
// is asked for again.
void TrayHostWatch::look() {
  again_.reset();
  answer_.reset();
  hasBusHost_ = false;
  if (hasWatcher()) {
    answer_ = std::make_unique<QDBusPendingCallWatcher>(askWatcher());
    QObject::connect(answer_.get(), &QDBusPendingCallWatcher::finished, this, [this] { answered(); });
  }
  consider();
}

void TrayHostWatch::answered() {
  const QDBusPendingReply<QVariant> reply = *answer_;
  answer_.release()->deleteLater();  // it is the one that calls
  hasBusHost_ = reply.isValid() && reply.value().toBool();
  if (reply.isError()) again_ = std::make_unique<qt::SingleShot>(kPatience, [this] { look(); });
  consider();
}

TrayHost TrayHostWatch::present() const {
  if (hasBusHost_) return TrayHost::Bus;
  return hasEmbeddingHost() ? TrayHost::Embedding : TrayHost::None;
}

void TrayHostWatch::consider() {
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
