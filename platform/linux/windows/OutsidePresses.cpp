#include "linux/windows/OutsidePresses.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <cstdint>

#include "linux/qt/Geometry.h"
#include "linux/qt/X11Toolkit.h"

namespace vistrel::windows {

namespace {

// The word of a press comes on two connections, and on Qt's by way of a thread. This long the one waits for
// the other; a person sees no delay in it. Where the pointer was over a window of ours it may be that a busy
// machine, or the window manager, still holds the press back; should that window lie under another, the
// popover closes so much later.
constexpr std::chrono::milliseconds kPatience(30);
constexpr std::chrono::milliseconds kPatienceOnOurs(500);
constexpr int kLeft = 1;
constexpr int kRight = 3;
constexpr std::size_t kRemembered = 32;  // more than a hand makes in that time

// Where the tray host embeds the icon in a window of ours, that window is a part of the panel all the same;
// but its press, which may be late as any other, closes the popover by itself.
bool isTrayIcon(const QWindow& window) { return window.objectName() == u"QSystemTrayIconSysWindow"; }

bool isOverOurs(QPoint place) {
  const auto windows = QGuiApplication::topLevelWindows();
  return std::any_of(windows.begin(), windows.end(), [place](const QWindow* window) {
    return window->isExposed() && window->geometry().contains(place);
  });
}

// Server time runs over after seven weeks.
bool isLater(xcb_timestamp_t a, xcb_timestamp_t b) { return static_cast<std::int32_t>(a - b) > 0; }

}  // namespace

OutsidePresses::~OutsidePresses() { setClient(nullptr); }

void OutsidePresses::setClient(backend::OutsidePressClient* client) {
  client_ = client;
  cover_.setAwaited(client_ != nullptr);
  ++watch_;
  ownPresses_.clear();
  qApp->removeEventFilter(this);
  if (!client_) {
    presses_.setHandler({});
    return;
  }
  watchedSince_ = qt::serverTime();
  qApp->installEventFilter(this);
  presses_.setHandler([this](const x11::RawPress& press) { pressed(press); });
}

bool OutsidePresses::eventFilter(QObject* object, QEvent* event) {
  const bool isPress =
      event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
  if (isPress && object->isWindowType()) {
    note(*static_cast<QWindow*>(object), *static_cast<QMouseEvent*>(event));
  }
  return false;
}

// An open menu gets the presses beside it too.
void OutsidePresses::note(const QWindow& window, const QMouseEvent& press) {
  if (isTrayIcon(window) || !window.geometry().contains(press.globalPosition().toPoint())) return;
  const auto time = static_cast<xcb_timestamp_t>(press.timestamp());
  if (!ownPresses_.empty() && ownPresses_.back() == time) return;  // a double click is told as a press, too
  ownPresses_.push_back(time);
  if (ownPresses_.size() > kRemembered) ownPresses_.pop_front();
}

// Where the pointer is by now does not decide: a quick hand has moved on, and a menu may have closed.
void OutsidePresses::pressed(const x11::RawPress& press) {
  if (!isLater(press.time, watchedSince_)) return;  // it may be what opened the popover
  client_->pressBegan();
  if (!client_) return;
  const QPoint place = qt::fromPixels({press.x, press.y});
  const bool isOnOurs = isOverOurs(place);
  const bool isCovered = cover_.isUp();
  if (isCovered && !isOnOurs && press.button == kLeft) cover_.pressed(place);
  QTimer::singleShot(isOnOurs ? kPatienceOnOurs : kPatience, this,
                     [this, watch = watch_, press, place, isCovered] {
                       if (watch == watch_) judge(press, place, isCovered);
                     });
}

void OutsidePresses::judge(const x11::RawPress& press, QPoint place, bool isCovered) {
  const bool isOurs = std::find(ownPresses_.begin(), ownPresses_.end(), press.time) != ownPresses_.end();
  if (isOurs || !client_) return;
  if (isCovered) return coverPressed(press.button, qt::fromQt(place));
  client_->pressedOutside(qt::fromQt(place), backend::OutsidePressClient::Press::HandedOn);
}

void OutsidePresses::coverPressed(int button, Point place) {
  using Button = backend::PointerButton;
  const bool mayBeForIcon = cover_.isBesidePopover() && (button == kLeft || button == kRight);
  if (mayBeForIcon && pressIcon_(button == kLeft ? Button::Left : Button::Right, place)) return;
  client_->pressedOutside(place, backend::OutsidePressClient::Press::Swallowed);
}

}  // namespace vistrel::windows
