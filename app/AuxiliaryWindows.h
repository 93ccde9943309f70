#pragma once

#include <memory>

namespace vistrel {

class NSWindow;

/// Opens a new Preferences window, in front of everything and with the keyboard. The caller may keep it; it
/// stays on screen until it is closed either way.
std::shared_ptr<NSWindow> openPreferencesWindow();

/// Opens a new About window in the same way.
std::shared_ptr<NSWindow> openAboutWindow();

}  // namespace vistrel
