#include "linux/tray/TrayIcon.h"

#include <private/qguiapplication_p.h>
#include <qpa/qplatformtheme.h>
#include <QApplication>
#include <QMouseEvent>
#include <QWidget>
#include <utility>

#include "base/Program.h"

namespace vistrel::tray {

namespace {

// Qt asks the desktop's theme which kind of icon to make, and the theme answers once for the whole process.
// One that offers none gets an icon to be embedded.
std::unique_ptr<QSystemTrayIcon> makeNative(TrayHost host) {
  if (host == TrayHost::Bus) return std::make_unique<QSystemTrayIcon>();
  QPlatformTheme withoutIcons;
  auto*& theme = QGuiApplicationPrivate::platform_theme;
  auto* desktops = std::exchange(theme, &withoutIcons);
  auto native = std::make_unique<QSystemTrayIcon>();
  theme = desktops;
  return native;
}

bool isEmbeddedIcon(const QObject& object) {
  return qstrcmp(object.metaObject()->className(), "QSystemTrayIconSys") == 0;
}

// Qt reports a second press only of the left button, and as something else than a press.
bool deliverAsPress(QObject& icon, const QMouseEvent& event) {
  QMouseEvent press(QEvent::MouseButtonPress, event.position(), event.scenePosition(), event.globalPosition(),
                    event.button(), event.buttons(), event.modifiers(), event.pointingDevice());
  QCoreApplication::sendEvent(&icon, &press);
  return true;
}

}  // namespace

TrayIcon::TrayIcon(TrayHost host, Pressed pressed, TrayMenu::Handlers menuHandlers)
    : menu_(std::move(menuHandlers)), native_(makeNative(host)) {
  native_->setToolTip(program::kName);
  native_->setContextMenu(&menu_.native());
  menu_.didAttach();
  connect(native_.get(), &QSystemTrayIcon::activated, this, std::move(pressed));
  if (host == TrayHost::Embedding) qApp->installEventFilter(this);
}

TrayIcon::~TrayIcon() = default;

void TrayIcon::show(const QIcon& icon) {
  native_->setIcon(icon);
  native_->show();
}

// An embedded icon is a window of ours: what reads the screen aloud finds it by that window's name.
bool TrayIcon::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonDblClick && isEmbeddedIcon(*watched)) {
    return deliverAsPress(*watched, static_cast<QMouseEvent&>(*event));
  }
  if (event->type() == QEvent::Show && isEmbeddedIcon(*watched)) {
    auto& window = static_cast<QWidget&>(*watched);
    window.setWindowTitle(program::kName);
    window.setAccessibleName(program::kName);
  }
  return false;
}

}  // namespace vistrel::tray
