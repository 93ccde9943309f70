#pragma once

#include <functional>
#include <string_view>

namespace vistrel {

/// Runs `work`. What it throws goes no further: it is told on standard error as a failure of `what`.
void runGuarded(std::string_view what, const std::function<void()>& work) noexcept;

}  // namespace vistrel
