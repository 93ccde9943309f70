#pragma once

#include <memory>
#include <vector>

#include "host/Windows.h"
#include "qt/X11Windows.h"

namespace vistrel::qt {

class QtWindow;

/// Windows and menus by way of Qt on X11.
class QtWindowSystem final : public host::WindowSystem {
 public:
  QtWindowSystem();
  ~QtWindowSystem() override;

  std::unique_ptr<host::NativeWindow> makeWindow(NSWindow& window, host::WindowClient& client) override;
  void setOutsidePressClient(host::OutsidePressClient* client) override;
  void showAlert(const std::shared_ptr<NSAlert>& alert, NSWindow* parent) override;

 private:
  X11Windows x11_;
  host::OutsidePressClient* client_ = nullptr;
};

}  // namespace vistrel::qt
