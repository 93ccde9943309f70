#include "backend/Backend.h"

#include "base/FatalError.h"

namespace vistrel::backend {

namespace {
Host* installed = nullptr;
}

void install(Host* host) { installed = host; }

bool isInstalled() { return installed != nullptr; }

Host& current() {
  if (!installed) fatalError("no backend is installed");
  return *installed;
}

}  // namespace vistrel::backend
