#include "foundation/ProcessInfo.h"

#include "backend/Backend.h"

namespace vistrel {

bool ProcessInfo::isOperatingSystemAtLeast(const OperatingSystemVersion& version) {
  return backend::current().session().platformVersion() >= version;
}

}  // namespace vistrel
