#include "linux/session/ActivationWatch.h"

#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "linux/qt/X11Toolkit.h"

namespace vistrel::session {

namespace {

using std::chrono::milliseconds;

// While somebody's grab lasts Qt tells nothing more, so the focus is looked at, this often.
constexpr milliseconds kGrabInterval{40};
// A window that was just shown gets its focus from the window manager, which takes its time. Only a focus
// that stays away this long is lost.
constexpr milliseconds kConfirmation{200};

bool isAnyWindowVisible() {
  const auto windows = QGuiApplication::topLevelWindows();
  return std::any_of(windows.begin(), windows.end(),
                     [](const QWindow* window) { return window->isVisible(); });
}

}  // namespace

ActivationWatch::ActivationWatch(Handlers handlers) : handlers_(std::move(handlers)) {
  QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, &context_, [this] {
    awaitsConfirmation_ = false;
    checkAfter(milliseconds(0));
  });
}

// In a turn of its own: the focus goes from one of our windows to another by way of none.
void ActivationWatch::checkAfter(milliseconds delay) {
  recheck_ = std::make_unique<qt::SingleShot>(delay, [this] { check(); });
}

void ActivationWatch::check() {
  const bool isFocused = QGuiApplication::focusWindow() != nullptr;
  const bool isConfirmed = std::exchange(awaitsConfirmation_, false);
  if (isFocused == isActive_) return;
  if (!isFocused && qt::isInputFocusOurs()) return checkAfter(kGrabInterval);
  if (!isFocused && !isConfirmed && isAnyWindowVisible()) {
    awaitsConfirmation_ = true;
    return checkAfter(kConfirmation);
  }
  isActive_ = isFocused;
  (isActive_ ? handlers_.didBecomeActive : handlers_.willResignActive)();
}

}  // namespace vistrel::session
