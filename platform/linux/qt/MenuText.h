#pragma once

#include <QString>
#include <string>

namespace vistrel::qt {

/// The title of a menu item as a row shows it: as text, on one line, elided in the middle when it is too
/// long. A title without anything to see says "(no name)": hosts put words of their own in the place of
/// nothing, and a row has to be seen, and read aloud, to be chosen.
[[nodiscard]] QString menuRowText(const std::string& title);

/// That text as a label for Qt's own menus, where "&" would mark a letter.
[[nodiscard]] QString labelForQtMenu(const QString& text);

/// That text as a label for a menu that goes over D-Bus: Qt turns its first "&" into the "_" that marks a
/// letter there, and leaves all others and every "_" as they are.
[[nodiscard]] QString labelForBusMenu(const QString& text);

}  // namespace vistrel::qt
