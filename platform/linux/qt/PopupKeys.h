#pragma once

#include <QAbstractNativeEventFilter>

#include "x11/HotKeyGrabs.h"

namespace vistrel::qt {

/// While a menu or combo box of the program is open, the toolkit has the keyboard to itself and no grab hears
/// of it: picks the hot keys out of what the toolkit gets.
class PopupKeys final : public QAbstractNativeEventFilter {
 public:
  explicit PopupKeys(x11::HotKeyGrabs& hotKeys);
  PopupKeys(const PopupKeys&) = delete;
  PopupKeys& operator=(const PopupKeys&) = delete;
  ~PopupKeys() override;

  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

 private:
  x11::HotKeyGrabs& hotKeys_;
};

}  // namespace vistrel::qt
