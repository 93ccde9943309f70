#include "base/Guarded.h"

#include <exception>
#include <string>

#include "base/Log.h"

namespace vistrel {

namespace {

void reportFailure(std::string_view what, const char* reason) {
  Log::warning("vistrel: " + std::string(what) + " failed: " + reason);
}

}  // namespace

void runGuarded(std::string_view what, const std::function<void()>& work) noexcept {
  try {
    work();
  } catch (const std::exception& failure) {
    reportFailure(what, failure.what());
  } catch (...) {
    reportFailure(what, "unknown reason");
  }
}

}  // namespace vistrel
