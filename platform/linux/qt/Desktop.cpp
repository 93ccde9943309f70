#include "qt/Desktop.h"

#include <QGuiApplication>
#include <utility>

#include "foundation/Log.h"
#include "linux/camera/CameraCenter.h"
#include "linux/files/Autostart.h"
#include "linux/files/PreferencesFile.h"
#include "linux/files/ResourceFolder.h"
#include "qt/Application.h"
#include "qt/PopupKeys.h"
#include "qt/QtMainLoop.h"
#include "qt/QtReactor.h"
#include "qt/QtSession.h"
#include "qt/QtStatusArea.h"
#include "qt/QtWindowSystem.h"
#include "qt/SingleInstance.h"
#include "x11/HotKeyGrabs.h"
#include "x11/RawPresses.h"
#include "x11/X11Connection.h"
#include "x11/X11Keyboard.h"

namespace vistrel::qt {

namespace {

// Where the windows get their keys; null on another window system.
xcb_connection_t* toolkitConnection() {
  const auto* native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return native ? native->connection() : nullptr;
}

}  // namespace

// In the order in which they need each other.
struct Desktop::Parts {
  Parts(std::unique_ptr<QApplication> app, std::unique_ptr<SingleInstance> one)
      : application(std::move(app)), instance(std::move(one)) {
    session.setScreenHandler([this] { statusArea.forgetIconFrame(); });
  }

  std::unique_ptr<QApplication> application;
  std::unique_ptr<SingleInstance> instance;
  QtMainLoop mainLoop;
  QtReactor reactor{mainLoop};
  files::PreferencesFile userFiles;
  files::ResourceFolder resources;
  files::Autostart loginItems{files::AutostartFolders::fromEnvironment(), resources.executablePath()};
  x11::X11Connection x11{reactor};
  x11::HotKeyGrabs hotKeys{x11};
  x11::X11Keyboard keyboard{x11, toolkitConnection()};
  PopupKeys popupKeys{hotKeys, keyboard};
  x11::RawPresses presses{x11};
  QtWindowSystem windows{presses};
  QtSession session{reactor, x11, *instance};
  QtStatusArea statusArea{session, x11};
  capture::CameraCenter cameras{reactor};
};

namespace {

bool mayGoOn(SingleInstance& instance) {
  switch (instance.claim()) {
    case SingleInstance::Role::First:
      return true;
    case SingleInstance::Role::Second:
      return false;
    case SingleInstance::Role::WithoutBus:
      Log::warning("Vistrel finds no session bus: starting it twice makes two of it");
      return true;
  }
  return false;
}

}  // namespace

std::unique_ptr<Desktop> Desktop::open(int& argumentCount, char** arguments, int& exitStatus) {
  auto application = makeApplication(argumentCount, arguments);
  if (!application) {
    Log::warning(application.error().message);
    exitStatus = 1;
    return nullptr;
  }
  auto instance = std::make_unique<SingleInstance>();
  exitStatus = 0;
  if (!mayGoOn(*instance)) return nullptr;
  auto parts = std::make_unique<Parts>(std::move(application).value(), std::move(instance));
  return std::unique_ptr<Desktop>(new Desktop(std::move(parts)));
}

Desktop::Desktop(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

Desktop::~Desktop() = default;

host::MainLoop& Desktop::mainLoop() { return parts_->mainLoop; }
host::UserFiles& Desktop::userFiles() { return parts_->userFiles; }
host::Resources& Desktop::resources() { return parts_->resources; }
host::LoginItems& Desktop::loginItems() { return parts_->loginItems; }
host::HotKeyHost& Desktop::hotKeys() { return parts_->hotKeys; }
host::KeyboardHost& Desktop::keyboard() { return parts_->keyboard; }
host::SessionHost& Desktop::session() { return parts_->session; }
host::StatusArea& Desktop::statusArea() { return parts_->statusArea; }
host::WindowSystem& Desktop::windows() { return parts_->windows; }
host::CameraHost& Desktop::cameras() { return parts_->cameras; }

}  // namespace vistrel::qt
