#pragma once

#include <string_view>

namespace vistrel {

/// Stops the program: a programming or packaging error, told on standard error as "Fatal error: MESSAGE".
[[noreturn]] void fatalError(std::string_view message);

}  // namespace vistrel
