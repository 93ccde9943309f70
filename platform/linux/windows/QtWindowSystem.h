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
  /// `iconFrame` tells where the icon in the tray is.
  QtWindowSystem(x11::RawPresses& presses, PressCover::IconFrame iconFrame)
      : outsidePresses_(presses, std::move(iconFrame)) {}

  std::unique_ptr<backend::NativeWindow> makeWindow(NSWindow& window, backend::WindowClient& client) override;
  void flush() override { surroundings_.x11.flush(); }
  void setOutsidePressClient(backend::OutsidePressClient* client) override;
  void showAlert(const std::shared_ptr<NSAlert>& alert, NSWindow* parent) override;

 private:
  Surroundings surroundings_;
  OutsidePresses outsidePresses_;
};

}  // namespace vistrel::windows
