#pragma once

namespace vistrel::qt {

/// Whether the X server's input focus is on one of the program's windows. Qt alone does not tell: a grab by
/// any client looks to it as if the focus had left.
[[nodiscard]] bool isInputFocusOurs();

}  // namespace vistrel::qt
