#pragma once

#include <memory>
#include <utility>

#include "backend/Windows.h"
#include "linux/windows/OutsidePresses.h"
#include "linux/windows/QtWindow.h"

namespace vistrel::windows {

/// Windows and menus by way of Qt on X11.
class QtWindowSystem final : public backend::WindowSystem {
 public:
  /// `pressIcon` presses the icon in the tray if it is there.
  QtWindowSystem(x11::RawPresses& presses, OutsidePresses::IconPress pressIcon)
      : outsidePresses_(presses, std::move(pressIcon)) {}

  std::unique_ptr<backend::NativeWindow> makeWindow(NSWindow& window, backend::WindowClient& client) override;
  void flush() override { surroundings_.x11.flush(); }
  void setOutsidePressClient(backend::OutsidePressClient* client) override;
  void showAlert(const std::shared_ptr<NSAlert>& alert, NSWindow* parent) override;

 private:
  Surroundings surroundings_;
  OutsidePresses outsidePresses_;
};

}  // namespace vistrel::windows
