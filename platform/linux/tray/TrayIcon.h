#pragma once

#include <QObject>
#include <QPointer>
#include <QSystemTrayIcon>
#include <QWidget>
#include <functional>
#include <memory>
#include <string>

#include "linux/tray/TrayHostWatch.h"
#include "linux/tray/TrayMenu.h"

namespace vistrel::tray {

/// The native icon in a tray of one kind, with the menu that hangs on it.
class TrayIcon final : public QObject {
 public:
  using Pressed = std::function<void(QSystemTrayIcon::ActivationReason)>;
  TrayIcon(TrayHost host, Pressed pressed, TrayMenu::Handlers menuHandlers);
  ~TrayIcon() override;

  [[nodiscard]] TrayMenu& menu() { return menu_; }
  void show(const QIcon& icon);
  void setToolTip(const std::string& text);
  void hide() { native_->hide(); }
  /// Where it is; empty where the host does not tell.
  [[nodiscard]] QRect geometry() const { return native_->geometry(); }

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void nameWindow();

  TrayMenu menu_;
  std::unique_ptr<QSystemTrayIcon> native_;
  QString toolTip_;
  QPointer<QWidget> window_;  // of an embedded icon, once it was shown
};

}  // namespace vistrel::tray
