#include "host/Host.h"

#include "foundation/FatalError.h"

namespace vistrel::host {

namespace {
Host* installed = nullptr;
}

void install(Host* host) { installed = host; }

bool isInstalled() { return installed != nullptr; }

Host& current() {
  if (!installed) fatalError("no backend is installed");
  return *installed;
}

}  // namespace vistrel::host
