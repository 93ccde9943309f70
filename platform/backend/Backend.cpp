#include "backend/Backend.h"

#include <vector>

#include "base/Log.h"

namespace vistrel::backend {

namespace {

Backend* installed = nullptr;

std::vector<void (*)()>& forgetters() {
  static std::vector<void (*)()> value;
  return value;
}

}  // namespace

void install(Backend* backend) {
  const auto snapshot = forgetters();
  for (auto forget = snapshot.rbegin(); forget != snapshot.rend(); ++forget) (*forget)();
  installed = backend;
}

void beforeReplacement(void (*forget)()) { forgetters().push_back(forget); }

bool isInstalled() { return installed != nullptr; }

Backend& current() {
  if (!installed) fatalError("no backend is installed");
  return *installed;
}

}  // namespace vistrel::backend
