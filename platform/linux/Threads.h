#pragma once

#include <functional>
#include <system_error>
#include <thread>

#include "base/Result.h"

namespace vistrel::desktop {

/// A thread that runs `work`. The error says why the system gives none: `std::thread` by itself would throw.
[[nodiscard]] inline Result<std::thread> startThread(std::function<void()> work) {
  try {
    return std::thread(std::move(work));
  } catch (const std::system_error& failure) {
    return Error{"The system gives no thread: " + failure.code().message()};
  }
}

}  // namespace vistrel::desktop
