#include "linux/session/QtSession.h"

#include <QApplication>
#include <QByteArray>
#include <QCursor>
#include <QDesktopServices>
#include <QEvent>
#include <QFile>
#include <QSessionManager>
#include <QUrl>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "base/Log.h"
#include "base/Program.h"
#include "linux/qt/Geometry.h"
#include "linux/session/SingleInstance.h"

namespace vistrel::session {

using backend::SessionClient;

namespace {

// Panels that start together with the program have come by then.
constexpr std::chrono::milliseconds kTrayPatience{3000};

bool isAnyWindowOnScreen() {
  const auto windows = QGuiApplication::topLevelWindows();
  return std::any_of(windows.begin(), windows.end(),
                     [](const QWindow* window) { return window->isVisible(); });
}

// GNOME's session sets the second one. systemd, which Plasma and GNOME start autostart entries by, names the
// unit.
bool isStartedByLogin() {
  if (qEnvironmentVariableIsSet(program::kAutostartMark) ||
      qEnvironmentVariableIsSet("DESKTOP_AUTOSTART_ID")) {
    return true;
  }
  QFile groups("/proc/self/cgroup");
  return groups.open(QIODevice::ReadOnly) && groups.readAll().contains("@autostart.service");
}

bool isStartedByBus() { return qEnvironmentVariableIsSet("DBUS_STARTER_BUS_TYPE"); }

// Whether somebody started the program and waits to see it: not the login, and not the session bus for a
// caller who wants something else. `wasActivated`: the bus's message asks for the program itself.
bool isStartedBySomebody(bool wasActivated) {
  return !isStartedByLogin() && (!isStartedByBus() || wasActivated);
}

}  // namespace

QtSession::QtSession(desktop::Reactor& reactor, x11::X11Connection& x11, SingleInstance& instance)
    : reactor_(reactor),
      instance_(instance),
      screenWatch_(x11,
                   [this] {
                     if (screenHandler_) screenHandler_();
                     report(&SessionClient::screensDidChange);
                   }),
      activation_({.didBecomeActive = [this] { report(&SessionClient::didBecomeActive); },
                   .willResignActive = [this] { report(&SessionClient::willResignActive); }}),
      contrast_([this] {
        colorScheme_.contrastDidChange();
        report(&SessionClient::contrastDidChange);
      }),
      colorScheme_({.didLearn =
                        [this] {
                          isReady_ = true;
                          launchWhenReady();
                        },
                    .didChange = [this] { report(&SessionClient::appearanceDidChange); },
                    .contrast = [this] { return contrast_.contrast(); }}),
      signals_(reactor, [this] { report(&SessionClient::terminateRequested); }) {
  watchEndOfSession();
}

void QtSession::setClient(SessionClient* client) {
  client_ = client;
  launchWhenReady();
}

// Windows come up light or dark as the desktop is, so that has to be known first.
void QtSession::launchWhenReady() {
  if (client_ && isReady_ && !std::exchange(isLaunched_, true)) reactor_.post([this] { launch(); });
}

// Whoever starts the program while it is launching waits for the mirror until then.
void QtSession::launch() {
  report(&SessionClient::didFinishLaunching);
  instance_.setReopenHandler([this] {
    waiting_.reset();
    report(&SessionClient::reopen);
  });
  instance_.setActionHandler([this](const std::string& action) {
    waiting_.reset();
    if (client_) client_->actionRequested(action);
  });
  waitForTray();
}

// Who started the program sees nothing of it on a desktop without a tray, so the mirror opens by itself.
void QtSession::waitForTray() {
  if (!isStartedBySomebody(instance_.wasActivated())) return;
  waiting_ = std::make_unique<qt::SingleShot>(kTrayPatience, [this] {
    waiting_.reset();
    if (hasTray_() || isAnyWindowOnScreen()) return;
    Log::warning(
        "Vistrel finds no tray for its icon and opens the mirror; start it again to open or close it");
    report(&SessionClient::reopen);
  });
}

void QtSession::report(Report what) {
  if (client_) (client_->*what)();
}

Point QtSession::pointerLocation() { return qt::fromQt(QCursor::pos()); }

bool QtSession::openUrl(const std::string& url) {
  return QDesktopServices::openUrl(QUrl(QString::fromStdString(url)));
}

// A session manager that starts the program again would show it to a user who has quit it.
void QtSession::watchEndOfSession() {
  const auto never = [](QSessionManager& manager) { manager.setRestartHint(QSessionManager::RestartNever); };
  QObject::connect(qApp, &QGuiApplication::commitDataRequest, this, never, Qt::DirectConnection);
  QObject::connect(qApp, &QGuiApplication::saveStateRequest, this, never, Qt::DirectConnection);
  qApp->installEventFilter(this);
}

// Qt's own way to quit, which a session manager's end takes, goes through the terminate step instead.
bool QtSession::eventFilter(QObject* watched, QEvent* event) {
  if (watched != qApp || event->type() != QEvent::Quit) return false;
  reactor_.post([this] { report(&SessionClient::terminateRequested); });
  return true;
}

}  // namespace vistrel::session
