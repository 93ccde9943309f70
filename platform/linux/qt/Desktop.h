#pragma once

#include <memory>

#include "host/Host.h"

namespace vistrel::qt {

/// An X11 desktop by way of Qt: the backend of the real program.
class Desktop final : public host::Host {
 public:
  /// Takes hold of the desktop of this process. None when there is nothing to go on for; then `exitStatus` is
  /// what the process ends with: 0 after a hand-over to the running program, 1 (told on standard error)
  /// without a display. The arguments must outlive the desktop.
  [[nodiscard]] static std::unique_ptr<Desktop> open(int& argumentCount, char** arguments, int& exitStatus);
  ~Desktop() override;

  host::MainLoop& mainLoop() override;
  host::UserFiles& userFiles() override;
  host::Resources& resources() override;
  host::LoginItems& loginItems() override;
  host::HotKeyHost& hotKeys() override;
  host::KeyboardHost& keyboard() override;
  host::SessionHost& session() override;
  host::StatusArea& statusArea() override;
  host::WindowSystem& windows() override;
  host::CameraHost& cameras() override;

 private:
  struct Parts;
  explicit Desktop(std::unique_ptr<Parts> parts);
  std::unique_ptr<Parts> parts_;
};

}  // namespace vistrel::qt
