#include "stage/screen/Input.h"

#include <chrono>
#include <string_view>
#include <thread>

#include <X11/XKBlib.h>
#include <X11/extensions/XTest.h>

namespace vistrel::stage {
namespace {

constexpr unsigned kEvdevOffset = 8;
constexpr int kDragSteps = 16;
constexpr std::chrono::milliseconds kStepTime{8};
// Menus of Qt 6.8 take a click only after more than six motions.
constexpr int kApproachSteps = 10;
constexpr std::string_view kEvdevPrefix = "evdev:";

}  // namespace

Input::Input(const Screen& screen) : screen_(screen) {
  XkbQueryExtension(screen_.display(), nullptr, &firstXkbEvent_, nullptr, nullptr, nullptr);
  XkbSelectEvents(screen_.display(), XkbUseCoreKbd, XkbBellNotifyMask, XkbBellNotifyMask);
}

void Input::move(int x, int y) const {
  XTestFakeMotionEvent(screen_.display(), -1, x, y, CurrentTime);
  XSync(screen_.display(), False);
}

void Input::button(unsigned button, Motion motion) const {
  XTestFakeButtonEvent(screen_.display(), button, motion == Motion::Down ? True : False, CurrentTime);
  XSync(screen_.display(), False);
}

std::optional<unsigned> Input::keyCode(const std::string& name) const {
  if (name.starts_with(kEvdevPrefix)) return std::stoul(name.substr(kEvdevPrefix.size())) + kEvdevOffset;
  const KeyCode code = XKeysymToKeycode(screen_.display(), XStringToKeysym(name.c_str()));
  if (code == 0) return std::nullopt;
  return code;
}

void Input::click(unsigned which, int x, int y) const {
  for (int step = kApproachSteps; step > 0; --step) {
    move(x - step, y);
    std::this_thread::sleep_for(kStepTime);
  }
  move(x, y);
  for (const Motion motion : {Motion::Down, Motion::Up}) button(which, motion);
}

void Input::key(unsigned keyCode, Motion motion) const {
  XTestFakeKeyEvent(screen_.display(), keyCode, motion == Motion::Down ? True : False, CurrentTime);
  XSync(screen_.display(), False);
}

bool Input::isTaken(unsigned keyCode, unsigned modifiers) const {
  static bool isRefused;
  isRefused = false;
  auto* display = screen_.display();
  const auto before = XSetErrorHandler([](Display*, XErrorEvent*) {
    isRefused = true;
    return 0;
  });
  // Nobody else may be refused because of this look.
  XGrabServer(display);
  XGrabKey(display, static_cast<int>(keyCode), modifiers, screen_.root(), False, GrabModeAsync,
           GrabModeAsync);
  XUngrabKey(display, static_cast<int>(keyCode), modifiers, screen_.root());
  XUngrabServer(display);
  XSync(display, False);
  XSetErrorHandler(before);
  return isRefused;
}

bool Input::isKeyboardFree() const {
  Display* display = screen_.display();
  const int status = XGrabKeyboard(display, screen_.root(), False, GrabModeAsync, GrabModeAsync, CurrentTime);
  XUngrabKeyboard(display, CurrentTime);
  XSync(display, False);
  return status == GrabSuccess;
}

int Input::bells() const {
  XSync(screen_.display(), False);
  int count = 0;
  XEvent event;
  while (XCheckTypedEvent(screen_.display(), firstXkbEvent_, &event)) {
    if (reinterpret_cast<XkbEvent&>(event).any.xkb_type == XkbBellNotify) ++count;
  }
  return count;
}

void Input::drag(int fromX, int fromY, int toX, int toY) const {
  move(fromX, fromY);
  button(1, Motion::Down);
  for (int step = 1; step <= kDragSteps; ++step) {
    // A hand takes its time; a window manager that grabs the pointer for the drag needs some, too.
    std::this_thread::sleep_for(kStepTime);
    move(fromX + (toX - fromX) * step / kDragSteps, fromY + (toY - fromY) * step / kDragSteps);
  }
  std::this_thread::sleep_for(kStepTime);
  button(1, Motion::Up);
}

}  // namespace vistrel::stage
