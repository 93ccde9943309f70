#pragma once

#include <string>

/// Names of the notifications by which the program's pieces hear of each other; each is made once.
namespace vistrel::notification {

/// A preference that the icon, the popover or its closing depend on was written.
[[nodiscard]] const std::string& dataChanged();
/// The mirroring preference was written; it counts from the next preview on.
[[nodiscard]] const std::string& mirroringChanged();
/// The popover was torn off into a window of its own.
[[nodiscard]] const std::string& windowDetached();
/// The desktop switched between light and dark; on the distributed centre.
[[nodiscard]] const std::string& interfaceThemeChanged();

}  // namespace vistrel::notification
