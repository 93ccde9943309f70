#pragma once

#include "backend/Camera.h"
#include "backend/Keyboard.h"
#include "backend/LoginItems.h"
#include "backend/MainLoop.h"
#include "backend/Resources.h"
#include "backend/Session.h"
#include "backend/StatusArea.h"
#include "backend/UserFiles.h"
#include "backend/Windows.h"

namespace vistrel::backend {

/// Everything that a backend provides. One is installed before anything of the vocabulary is used.
class Host {
 public:
  virtual ~Host() = default;
  virtual MainLoop& mainLoop() = 0;
  virtual UserFiles& userFiles() = 0;
  virtual Resources& resources() = 0;
  virtual LoginItems& loginItems() = 0;
  virtual HotKeyHost& hotKeys() = 0;
  virtual KeyboardHost& keyboard() = 0;
  virtual SessionHost& session() = 0;
  virtual StatusArea& statusArea() = 0;
  virtual WindowSystem& windows() = 0;
  virtual CameraHost& cameras() = 0;
};

/// Makes `host` the backend of the process; null takes it away. The caller keeps it alive.
void install(Host* host);

/// The installed backend. Stops the program when there is none.
[[nodiscard]] Host& current();
[[nodiscard]] bool isInstalled();

}  // namespace vistrel::backend
