#include "backend/Backend.h"

#include "base/Log.h"

namespace vistrel::backend {

namespace {
Backend* installed = nullptr;
}

void install(Backend* backend) { installed = backend; }

bool isInstalled() { return installed != nullptr; }

Backend& current() {
  if (!installed) fatalError("no backend is installed");
  return *installed;
}

}  // namespace vistrel::backend
