#include "linux/session/ColorScheme.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QEvent>
#include <QPalette>
#include <QToolTip>
#include <utility>

#include "base/Log.h"
#include "linux/qt/Palettes.h"

namespace vistrel::session {

namespace {

constexpr const char* kService = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kInterface = "org.freedesktop.portal.Settings";
constexpr const char* kNamespace = "org.freedesktop.appearance";
constexpr const char* kKey = "color-scheme";
constexpr uint kPreferDark = 1;
// A portal that is started by the question answers within a tenth of this. The program shows nothing before.
constexpr std::chrono::milliseconds kPatience{1000};

// Portals wrap the answer to Read twice and the signal's value once.
uint unwrapped(QVariant value) {
  while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
  return value.toUInt();
}

bool isPaletteDark() { return QApplication::palette().color(QPalette::Window).lightness() < 128; }

}  // namespace

ColorScheme::ColorScheme(Handlers handlers)
    : handlers_(std::move(handlers)),
      portal_(kService, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForRegistration),
      patience_(std::make_unique<qt::SingleShot>(kPatience, [this] { learned(); })) {
  connect(&portal_, &QDBusServiceWatcher::serviceRegistered, this, [this] { askPortal(); });
  qApp->installEventFilter(this);
  look();
  connectPortal();
  askPortal();
}

void ColorScheme::connectPortal() {
  // Without a name for the type Qt refuses a slot that takes it.
  qRegisterMetaType<QDBusVariant>("QDBusVariant");
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  if (!bus.connect(kService, kPath, kInterface, "SettingChanged", this,
                   SLOT(settingChanged(QString, QString, QDBusVariant)))) {
    Log::warning("Vistrel cannot hear of changes between light and dark");
  }
}

void ColorScheme::askPortal() {
  auto message = QDBusMessage::createMethodCall(kService, kPath, kInterface, "Read");
  message << kNamespace << kKey;
  auto* call = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
  connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
    call->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *call;
    if (reply.isError()) return useGnomeSettings();
    gnome_.reset();
    set(unwrapped(reply.value().variant()) == kPreferDark);
  });
}

void ColorScheme::settingChanged(const QString& nameSpace, const QString& key, const QDBusVariant& value) {
  if (nameSpace == kNamespace && key == kKey) set(unwrapped(value.variant()) == kPreferDark);
}

void ColorScheme::useGnomeSettings() {
  if (!gnome_) gnome_ = GnomeSettings::open([this] { useGnomeSettings(); });
  set(gnome_ ? gnome_->prefersDark() : std::nullopt);
}

void ColorScheme::set(std::optional<bool> isToldDark) {
  const bool wasTold = std::exchange(isToldDark_, isToldDark).has_value();
  // Only without a palette of ours does Qt follow the desktop's.
  if (wasTold && !isToldDark) QApplication::setPalette(QPalette());
  look();
  learned();
}

// The palette changes by a word of the desktop, or because the desktop or a theme sets another.
bool ColorScheme::eventFilter(QObject* watched, QEvent* event) {
  if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange) {
    QMetaObject::invokeMethod(
        this, [this] { look(); }, Qt::QueuedConnection);
  }
  return false;
}

void ColorScheme::look() {
  const bool wasDark = std::exchange(isDark_, isToldDark_.value_or(isPaletteDark()));
  if (isToldDark_) QApplication::setPalette(qt::paletteFor(isDark_));
  QToolTip::setPalette(qt::paletteFor(isDark_));
  if (isDark_ != wasDark && !patience_) handlers_.didChange();
}

void ColorScheme::learned() {
  if (std::exchange(patience_, nullptr)) handlers_.didLearn();
}

}  // namespace vistrel::session
