#include "qt/ActivationWatch.h"

#include <QGuiApplication>
#include <QWindow>
#include <utility>

#include "qt/InputFocus.h"

namespace vistrel::qt {

namespace {

using std::chrono::milliseconds;

// While somebody's grab lasts Qt tells nothing more, so the focus is looked at, this often.
constexpr milliseconds kGrabInterval{40};

}  // namespace

ActivationWatch::ActivationWatch(Handlers handlers) : handlers_(std::move(handlers)) {
  QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, &context_,
                   [this] { checkAfter(milliseconds(0)); });
}

// In a turn of its own: the focus goes from one of our windows to another by way of none.
void ActivationWatch::checkAfter(milliseconds delay) {
  recheck_ = std::make_unique<SingleShot>(delay, [this] { check(); });
}

void ActivationWatch::check() {
  const bool isFocused = QGuiApplication::focusWindow() != nullptr;
  if (isFocused == isActive_) return;
  if (!isFocused && isInputFocusOurs()) return checkAfter(kGrabInterval);
  isActive_ = isFocused;
  (isActive_ ? handlers_.didBecomeActive : handlers_.willResignActive)();
}

}  // namespace vistrel::qt
