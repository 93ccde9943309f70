#pragma once

#include <memory>

#include "backend/Backend.h"

namespace vistrel::desktop {

/// An X11 desktop by way of Qt: the backend of the real program.
class Desktop final : public backend::Backend {
 public:
  /// Takes hold of the desktop of this process. None when there is nothing to go on for; then `exitStatus` is
  /// what the process ends with: 0 after a hand-over to the running program, 1 (told on standard error)
  /// without a display. The arguments must outlive the desktop.
  [[nodiscard]] static std::unique_ptr<Desktop> open(int& argumentCount, char** arguments, int& exitStatus);
  ~Desktop() override;

  backend::MainLoop& mainLoop() override;
  backend::UserFiles& userFiles() override;
  backend::Resources& resources() override;
  backend::LoginItems& loginItems() override;
  backend::HotKeys& hotKeys() override;
  backend::Keyboard& keyboard() override;
  backend::Session& session() override;
  backend::StatusArea& statusArea() override;
  backend::WindowSystem& windows() override;
  backend::Cameras& cameras() override;

 private:
  struct Parts;
  explicit Desktop(std::unique_ptr<Parts> parts);
  std::unique_ptr<Parts> parts_;
};

}  // namespace vistrel::desktop
