#pragma once

#include <string>

#include "stage/screen/Screen.h"

namespace vistrel::stage {

/// Writes `image` to `path`; false when that fails.
[[nodiscard]] bool writePng(const Image& image, const std::string& path);

}  // namespace vistrel::stage
