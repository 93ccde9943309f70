#pragma once

#include <QFontMetrics>
#include <QString>
#include <string>

namespace vistrel::qt {

/// A text on one line: line feeds, tabs and other control characters become spaces.
[[nodiscard]] QString onOneLine(const std::string& text);

/// A menu item's title as a native menu takes it: plain text on one line, elided in the middle where it is
/// wider than a menu should be, with no character taken for a mnemonic.
[[nodiscard]] QString menuText(const std::string& title, const QFontMetrics& metrics);

}  // namespace vistrel::qt
