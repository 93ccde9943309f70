#pragma once

#include <string>

#include "linux/x11/X11Connection.h"

namespace vistrel::x11 {

/// Tells the desktop that what it started under `id` is there (Startup Notification Protocol, "remove"): it
/// shows a busy pointer until then, or until it loses patience.
void endStartupSequence(X11Connection& connection, const std::string& id);

}  // namespace vistrel::x11
