#pragma once

#include <memory>

#include "host/Windows.h"
#include "qt/OutsidePresses.h"
#include "qt/X11Windows.h"

namespace vistrel::qt {

/// Windows and menus by way of Qt on X11.
class QtWindowSystem final : public host::WindowSystem {
 public:
  explicit QtWindowSystem(x11::RawPresses& presses) : outsidePresses_(presses) {}

  std::unique_ptr<host::NativeWindow> makeWindow(NSWindow& window, host::WindowClient& client) override;
  void flush() override { x11_.flush(); }
  void setOutsidePressClient(host::OutsidePressClient* client) override;
  void showAlert(const std::shared_ptr<NSAlert>& alert, NSWindow* parent) override;

 private:
  X11Windows x11_;
  OutsidePresses outsidePresses_;
};

}  // namespace vistrel::qt
