#pragma once

#include <string>

/// What the recorder says, in the user's language; the key itself where no table has an entry.
namespace vistrel::KeyboardShortcuts::text {

[[nodiscard]] std::string recordShortcut();
[[nodiscard]] std::string pressShortcut();
[[nodiscard]] std::string usedByMenuItem(const std::string& title);
[[nodiscard]] std::string usedBySystem();
[[nodiscard]] std::string canBeChanged();

}  // namespace vistrel::KeyboardShortcuts::text
