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
class Backend {
 public:
  virtual ~Backend() = default;
  virtual MainLoop& mainLoop() = 0;
  virtual UserFiles& userFiles() = 0;
  virtual Resources& resources() = 0;
  virtual LoginItems& loginItems() = 0;
  virtual HotKeys& hotKeys() = 0;
  virtual Keyboard& keyboard() = 0;
  virtual Session& session() = 0;
  virtual StatusArea& statusArea() = 0;
  virtual WindowSystem& windows() = 0;
  virtual Cameras& cameras() = 0;
};

/// Makes `backend` the backend of the process; null takes it away. The caller keeps it alive. What the
/// process knows of the one before is forgotten first, while that one is still there.
void install(Backend* backend);

/// Has `forget` called each time before the backend is replaced or taken away, the latest one first. For the
/// state of which a program has one; see foundation/ProcessState.h.
void beforeReplacement(void (*forget)());

/// The installed backend. Stops the program when there is none.
[[nodiscard]] Backend& current();
[[nodiscard]] bool isInstalled();

}  // namespace vistrel::backend
