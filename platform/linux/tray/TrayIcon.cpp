#include "linux/tray/TrayIcon.h"

#include <private/qguiapplication_p.h>
#include <qpa/qplatformtheme.h>
#include <QApplication>
#include <QMouseEvent>
#include <QTextDocument>
#include <utility>

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

void TrayIcon::setToolTip(const std::string& text) {
  toolTip_ = QString::fromStdString(text);
  // An embedded icon's is drawn by Qt, which takes a text with a tag in it for markup.
  native_->setToolTip(Qt::mightBeRichText(toolTip_) ? Qt::convertFromPlainText(toolTip_) : toolTip_);
  nameWindow();
}

// An embedded icon is a window of ours: what reads the screen aloud finds it by that window's name.
void TrayIcon::nameWindow() {
  if (!window_) return;
  window_->setWindowTitle(toolTip_);
  window_->setAccessibleName(toolTip_);
}

bool TrayIcon::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonDblClick && isEmbeddedIcon(*watched)) {
    return deliverAsPress(*watched, static_cast<QMouseEvent&>(*event));
  }
  if (event->type() == QEvent::Show && isEmbeddedIcon(*watched)) {
    window_ = static_cast<QWidget*>(watched);
    nameWindow();
  }
  return false;
}

}  // namespace vistrel::tray
