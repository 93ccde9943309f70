#pragma once

#include "backend/Backend.h"

namespace vistrel {

/// What the program knows of the system it runs on.
class ProcessInfo {
 public:
  using OperatingSystemVersion = backend::Session::Version;
  /// Whether the platform is of that version or a later one.
  [[nodiscard]] static bool isOperatingSystemAtLeast(const OperatingSystemVersion& version) {
    return backend::current().session().platformVersion() >= version;
  }
};

}  // namespace vistrel
