#pragma once

namespace vistrel::session {

/// Whether somebody started the program and waits to see it: not the login (autostart), and not the session
/// bus for a caller who wants something else. `wasActivated`: the bus's message asks for the program itself.
[[nodiscard]] bool isStartedBySomebody(bool wasActivated);

}  // namespace vistrel::session
