#include "base/FatalError.h"

#include <cstdio>
#include <cstdlib>

namespace vistrel {

void fatalError(std::string_view message) {
  std::fprintf(stderr, "Fatal error: %.*s\n", static_cast<int>(message.size()), message.data());
  std::fflush(nullptr);
  std::abort();
}

}  // namespace vistrel
