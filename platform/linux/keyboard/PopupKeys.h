#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include "linux/keyboard/HotKeyGrabs.h"
#include "linux/keyboard/X11Keyboard.h"

namespace vistrel::keyboard {

/// While a menu or combo box of the program is open, the toolkit has the keyboard to itself and no grab hears
/// of it: picks the hot keys out of what the toolkit gets. Afterwards the keyboard is the toolkit's no more,
/// and who had captured it has it again.
class PopupKeys final : public QObject, public QAbstractNativeEventFilter {
 public:
  PopupKeys(HotKeyGrabs& hotKeys, X11Keyboard& keyboard);
  PopupKeys(const PopupKeys&) = delete;
  PopupKeys& operator=(const PopupKeys&) = delete;
  ~PopupKeys() override;

  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void popupClosed();

  HotKeyGrabs& hotKeys_;
  X11Keyboard& keyboard_;
};

}  // namespace vistrel::keyboard
