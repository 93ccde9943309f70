#pragma once

#include <optional>

#include "foundation/Bundle.h"

namespace vistrel::KeyboardShortcuts {

/// The bundle with the subsystem's texts, "KeyboardShortcuts_KeyboardShortcuts.bundle": looked for in the
/// program's resources, then beside the program. Found once and kept; stops the program when it is missing.
[[nodiscard]] const Bundle& resourceBundle();

/// The same search, anew; none when it is missing.
[[nodiscard]] std::optional<Bundle> findResourceBundle();

}  // namespace vistrel::KeyboardShortcuts
