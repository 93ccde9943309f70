#pragma once

#include <optional>
#include <string>

#include "foundation/Bundle.h"

namespace vistrel::KeyboardShortcuts {

/// The bundle with the subsystem's texts, "KeyboardShortcuts_KeyboardShortcuts.bundle": looked for in the
/// program's resources, then beside the program. Found once and kept; stops the program when it is missing.
[[nodiscard]] const Bundle& resourceBundle();

/// The same search, anew; none when it is missing.
[[nodiscard]] std::optional<Bundle> findResourceBundle();

/// What the recorder says, in the user's language; the key itself where no table has an entry.
namespace text {

[[nodiscard]] std::string recordShortcut();
[[nodiscard]] std::string pressShortcut();
[[nodiscard]] std::string usedByMenuItem(const std::string& title);
[[nodiscard]] std::string usedBySystem();
[[nodiscard]] std::string canBeChanged();

}  // namespace text

}  // namespace vistrel::KeyboardShortcuts
