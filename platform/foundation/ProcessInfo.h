#pragma once

#include "backend/Session.h"

namespace vistrel {

/// What the program knows of the system it runs on.
class ProcessInfo {
 public:
  using OperatingSystemVersion = backend::Session::Version;
  /// Whether the platform is of that version or a later one.
  [[nodiscard]] static bool isOperatingSystemAtLeast(const OperatingSystemVersion& version);
};

}  // namespace vistrel
