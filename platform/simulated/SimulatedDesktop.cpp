#include "simulated/SimulatedDesktop.h"

#include <utility>

#include "appkit/NSApplication.h"
#include "appkit/NSMenu.h"
#include "appkit/NSWindow.h"
#include "base/Log.h"

namespace vistrel::simulated {

SimulatedDesktop::SimulatedDesktop(const std::string& resourceDirectory) : resourceFolder(resourceDirectory) {
  backend::install(this);
  Log::setSink([this](std::string_view line) { log_.emplace_back(line); });
}

SimulatedDesktop::~SimulatedDesktop() {
  loop.dropQueued();
  backend::install(nullptr);
  Log::setSink(nullptr);
}

void SimulatedDesktop::start() {
  NSApplication::shared().run();
  simulatedSession.client().didFinishLaunching();
  loop.settle();
}

void SimulatedDesktop::clickIcon(std::uint64_t modifiers) {
  if (tray.frame) simulatedSession.pointer = tray.frame->center();
  windowSystem.pressOutside(simulatedSession.pointer);
  tray.client().statusIconPressed(backend::PointerButton::Left, modifiers, simulatedSession.pointer);
  loop.settle();
}

void SimulatedDesktop::openMenuFromTray() {
  if (tray.frame) simulatedSession.pointer = tray.frame->center();
  windowSystem.pressOutside(simulatedSession.pointer);
  tray.client().statusMenuWillOpen();
  loop.settle();
}

void SimulatedDesktop::chooseFromTray(const std::string& title) {
  const auto& menu = tray.poppedUp ? tray.poppedUp : tray.mirrored;
  for (const auto& item : menu->itemArray()) {
    if (item->title() != title) continue;
    tray.client().statusMenuItemChosen(item);
    loop.settle();
    return;
  }
  fatalError("the menu on the simulated screen has no row " + title);
}

void SimulatedDesktop::clickElsewhere() {
  windowSystem.pressOutside({100, 700});
  loop.settle();
}

void SimulatedDesktop::activateOtherApplication() {
  simulatedSession.client().willResignActive();
  loop.settle();
}

void SimulatedDesktop::changeDisplays() {
  simulatedSession.client().screensDidChange();
  loop.settle();
}

void SimulatedDesktop::setDark(bool isDark) {
  simulatedSession.dark = isDark;
  simulatedSession.client().appearanceDidChange();
  loop.settle();
}

void SimulatedDesktop::pressKey(std::uint16_t keyCode, std::uint64_t modifiers) {
  NSWindow* window = NSApplication::shared().keyWindow();
  if (!window) return;
  const auto kept = window->shared_from_this();
  for (const auto type : {NSEventType::KeyDown, NSEventType::KeyUp}) {
    NSEvent::Key key;
    key.type = type;
    key.keyCode = keyCode;
    key.modifierFlags = {modifiers};
    kept->handleEvent(NSEvent::keyEvent(key, window));
  }
  loop.settle();
}

std::vector<std::string> SimulatedDesktop::rows(const NSMenu& menu) {
  std::vector<std::string> result;
  for (const auto& item : menu.itemArray()) {
    const std::string mark = item->state() == NSControlState::On ? "✓ " : "";
    result.push_back(item->isSeparatorItem() ? "---" : mark + item->title());
  }
  return result;
}

std::vector<std::string> SimulatedDesktop::takeLog() { return std::exchange(log_, {}); }

}  // namespace vistrel::simulated
