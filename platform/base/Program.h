#pragma once

namespace vistrel::program {

/// What people call the program.
constexpr const char* kName = "Vistrel";

/// Its application id: the name on the session bus, of the desktop entry, the icon and the preferences'
/// folder (Desktop Entry Specification, D-Bus).
constexpr const char* kIdentifier = "org.vistrel.Vistrel";

/// The environment variable that the autostart entry sets: nobody waits to see the program then.
constexpr const char* kAutostartMark = "VISTREL_AUTOSTART";

}  // namespace vistrel::program
