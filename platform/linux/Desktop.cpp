#include "linux/Desktop.h"

#include <QApplication>
#include <utility>

#include "base/Log.h"
#include "linux/AnswerWatch.h"
#include "linux/camera/CameraCenter.h"
#include "linux/files/Autostart.h"
#include "linux/files/FileTools.h"
#include "linux/files/PreferencesFile.h"
#include "linux/files/ResourceFolder.h"
#include "linux/files/StandardStreams.h"
#include "linux/keyboard/DesktopHotKeys.h"
#include "linux/keyboard/HotKeyGrabs.h"
#include "linux/keyboard/PopupKeys.h"
#include "linux/keyboard/X11Keyboard.h"
#include "linux/qt/Application.h"
#include "linux/qt/LoopReactor.h"
#include "linux/qt/QtMainLoop.h"
#include "linux/qt/X11Toolkit.h"
#include "linux/session/Lid.h"
#include "linux/session/QtSession.h"
#include "linux/session/SingleInstance.h"
#include "linux/session/SleepWatch.h"
#include "linux/tray/HostMessages.h"
#include "linux/tray/QtStatusArea.h"
#include "linux/windows/QtWindowSystem.h"
#include "linux/x11/RawPresses.h"
#include "linux/x11/X11Connection.h"

namespace vistrel::desktop {

// In the order in which they need each other.
struct Desktop::Parts {
  Parts(std::unique_ptr<tray::HostMessages> messages, std::unique_ptr<QApplication> app,
        std::unique_ptr<session::SingleInstance> one)
      : hostMessages(std::move(messages)), application(std::move(app)), instance(std::move(one)) {
    // TRANSLATORS: "RTL" for a language that is written from right to left, else "LTR".
    if (resources.translation("LTR") == "RTL") QApplication::setLayoutDirection(Qt::RightToLeft);
    session.setTrayQuestion([this] { return statusArea.hasTray(); });
    cameras.setLidQuestion([this] { return lid.isClosed(); });
    session.setScreenHandler([this] { statusArea.forgetIconFrame(); });
  }

  std::unique_ptr<tray::HostMessages> hostMessages;
  std::unique_ptr<QApplication> application;
  std::unique_ptr<session::SingleInstance> instance;
  qt::QtMainLoop mainLoop;
  qt::LoopReactor reactor{mainLoop};
  files::PreferencesFile userFiles{reactor};
  files::ResourceFolder resources;
  files::Autostart loginItems{files::AutostartFolders::fromEnvironment(), resources.executablePath(),
                              files::environment("XDG_CURRENT_DESKTOP")};
  x11::X11Connection x11{reactor};
  keyboard::HotKeyGrabs grabs{x11};
  keyboard::X11Keyboard keyboard{x11, qt::toolkitConnection(), grabs};
  keyboard::DesktopHotKeys hotKeys{grabs, keyboard, x11};
  keyboard::PopupKeys popupKeys{grabs, keyboard};
  x11::RawPresses presses{x11};
  windows::QtWindowSystem windows{
      presses, [this](auto button, Point place) { return statusArea.pressIcon(button, place); }};
  session::QtSession session{reactor, x11, *instance};
  tray::QtStatusArea statusArea{session, x11, *hostMessages};
  session::Lid lid;
  camera::CameraCenter cameras{reactor};
  session::SleepWatch sleep{[this](bool isAsleep) { cameras.setAsleep(isAsleep); }};
};

namespace {

auto awaiting(const char* whom, const auto& question) {
  const AnswerWatch watch(whom);
  return question();
}

bool mayGoOn(session::SingleInstance& instance, int& exitStatus) {
  switch (instance.claim()) {
    case session::SingleInstance::Role::First:
      return true;
    case session::SingleInstance::Role::Second:
      return false;
    case session::SingleInstance::Role::WithoutBus:
      Log::warning("Vistrel finds no session bus, so that starting it twice makes two of it: " +
                   instance.busError());
      return true;
    case session::SingleInstance::Role::Unanswered:
      Log::warning("Vistrel runs already and does not answer: end that process and start it again");
      exitStatus = 1;
      return false;
  }
  return false;
}

}  // namespace

std::unique_ptr<Desktop> Desktop::open(int& argumentCount, char** arguments, int& exitStatus) {
  files::holdStandardStreams();
  Log::setWriter(files::writeLogLine);
  auto hostMessages = std::make_unique<tray::HostMessages>();
  exitStatus = 1;
  if (const auto display = awaiting("the X server", qt::findDisplay); !display) {
    Log::warning(display.error().message);
    return nullptr;
  }
  // Newer Qts ask the bus already while they begin.
  auto [application, instance] = awaiting("the session bus", [&] {
    auto first = qt::makeApplication(argumentCount, arguments);
    return std::pair(std::move(first), std::make_unique<session::SingleInstance>());
  });
  exitStatus = 0;
  if (!mayGoOn(*instance, exitStatus)) return nullptr;
  auto parts = std::make_unique<Parts>(std::move(hostMessages), std::move(application), std::move(instance));
  return std::unique_ptr<Desktop>(new Desktop(std::move(parts)));
}

Desktop::Desktop(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

Desktop::~Desktop() = default;

backend::MainLoop& Desktop::mainLoop() { return parts_->mainLoop; }
backend::UserFiles& Desktop::userFiles() { return parts_->userFiles; }
backend::Resources& Desktop::resources() { return parts_->resources; }
backend::LoginItems& Desktop::loginItems() { return parts_->loginItems; }
backend::HotKeys& Desktop::hotKeys() { return parts_->hotKeys; }
backend::Keyboard& Desktop::keyboard() { return parts_->keyboard; }
backend::Session& Desktop::session() { return parts_->session; }
backend::StatusArea& Desktop::statusArea() { return parts_->statusArea; }
backend::WindowSystem& Desktop::windows() { return parts_->windows; }
backend::Cameras& Desktop::cameras() { return parts_->cameras; }

}  // namespace vistrel::desktop
