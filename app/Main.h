#pragma once

namespace vistrel {

/// Hands control to the application's main loop with the program's own delegate; a backend is installed
/// before. Returns the exit status.
int runApplication();

}  // namespace vistrel
