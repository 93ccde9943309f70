#include "linux/windows/PressCover.h"

#include <qpa/qplatformscreen.h>
#include <qpa/qplatformwindow.h>

#include <QApplication>
#include <QEvent>
#include <QRegion>
#include <QScreen>
#include <QStyleHints>
#include <QWindow>
#include <algorithm>
#include <tuple>
#include <utility>
#include <vector>

#include "base/Log.h"
#include "linux/DesktopName.h"
#include "linux/qt/X11Toolkit.h"
#include "linux/x11/Requests.h"

namespace vistrel::windows {

namespace {

constexpr int kThickestPanel = 64;  // points

bool isAttachedPopover(const QWindow* window) { return window->isVisible() && window->type() == Qt::Tool; }

bool changesTheView(QEvent::Type type) {
  return type == QEvent::Show || type == QEvent::Hide || type == QEvent::Move || type == QEvent::Resize;
}

QRegion desktopInPixels() {
  QRegion region;
  for (const QScreen* screen : QGuiApplication::screens()) region += screen->handle()->geometry();
  return region;
}

QRegion ownWindowsInPixels() {
  QRegion region;
  for (const QWindow* window : QGuiApplication::topLevelWindows()) {
    const auto* native = window->isVisible() ? window->handle() : nullptr;
    if (native) region += native->geometry().marginsAdded(native->frameMargins());
  }
  return region;
}

QRegion aroundInPixels(QPoint place) {
  const int reach = QGuiApplication::styleHints()->mouseDoubleClickDistance();
  return qt::toPixels(QRect(place, place).adjusted(-reach, -reach, reach, reach));
}

bool mayBeInPanel(QPoint place) {
  const QScreen* screen = QGuiApplication::screenAt(place);
  const int most = kThickestPanel;
  return screen && !screen->geometry().adjusted(most, most, -most, -most).contains(place);
}

std::vector<xcb_rectangle_t> rectanglesOf(const QRegion& region) {
  std::vector<xcb_rectangle_t> rectangles;
  for (const QRect& r : region) {
    rectangles.push_back({static_cast<std::int16_t>(r.x()), static_cast<std::int16_t>(r.y()),
                          static_cast<std::uint16_t>(r.width()), static_cast<std::uint16_t>(r.height())});
  }
  return rectangles;
}

}  // namespace

PressCover::PressCover() {
  doubleClick_.setSingleShot(true);
  connect(&doubleClick_, &QTimer::timeout, this, [this] {
    if (!isWanted()) uncover();
  });
  auto* connection = qt::toolkitConnection();
  isXWayland_ = connection && x11::isXWayland(connection);
  if (isXWayland_) qApp->installEventFilter(this);
}

PressCover::~PressCover() = default;

void PressCover::setAwaited(bool isAwaited) {
  isAwaited_ = isAwaited;
  if (isXWayland_) update();
}

// In a turn of its own: an event comes before what it tells of is so.
bool PressCover::eventFilter(QObject* object, QEvent* event) {
  if (!isUpdateDue_ && object->isWindowType() && changesTheView(event->type())) {
    isUpdateDue_ = true;
    QMetaObject::invokeMethod(this, [this] { update(); }, Qt::QueuedConnection);
  }
  return false;
}

bool PressCover::isBesidePopover() const {
  const auto windows = QGuiApplication::topLevelWindows();
  return isAwaited_ && !QApplication::activeModalWidget() &&
         std::any_of(windows.begin(), windows.end(), isAttachedPopover);
}

bool PressCover::isWanted() const { return QApplication::activePopupWidget() || isBesidePopover(); }

// GNOME opens the icon's menu by a single click: by the second press, were that handed on.
void PressCover::pressed(QPoint place) {
  if (!desktop::isDesktop("GNOME") || !mayBeInPanel(place)) return;
  firstPress_ = place;
  doubleClick_.start(QGuiApplication::styleHints()->mouseDoubleClickInterval());
  cover(aroundInPixels(place));
}

void PressCover::sayFailure() {
  if (!cover_->failure() || std::exchange(isFailureSaid_, true)) return;
  Log::warning(
      "vistrel: not every press beside the mirror closes it, since what hears of them does not run: " +
      cover_->failure()->message);
}

void PressCover::cover(const QRegion& region) {
  if (!cover_) cover_ = std::make_unique<x11::InputCover>();
  cover_->setParts(rectanglesOf(region));
  sayFailure();
}

void PressCover::uncover() {
  if (!cover_) return;
  std::ignore = cover_->isAble();  // it may have ended since
  sayFailure();
  cover_.reset();
}

// Where nobody composes the windows, as in a nested server, a transparent one would hide the desktop.
void PressCover::update() {
  isUpdateDue_ = false;
  if (isWanted() && x11::isOwned(qt::toolkitConnection(), "_NET_WM_CM_S0")) {
    cover(desktopInPixels() - ownWindowsInPixels());
  } else if (doubleClick_.isActive()) {
    cover(aroundInPixels(firstPress_));
  } else {
    uncover();
  }
}

}  // namespace vistrel::windows
