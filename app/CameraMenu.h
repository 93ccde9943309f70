#pragma once

/// The actions that menus send and more than one class answers to.
namespace vistrel::action {

inline constexpr const char* kSwitchCameraInput = "switchCameraInputWithSender:";
inline constexpr const char* kOpenAbout = "openAboutWithSender:";
inline constexpr const char* kOpenPreferences = "openPreferencesWithSender:";
inline constexpr const char* kQuit = "quitWithSender:";

}  // namespace vistrel::action

namespace vistrel {

class CameraManagement;
class NSMenu;

/// Appends an item for each listed camera, in order, with a check mark at those that bear the selected one's
/// name.
void addCameraItems(NSMenu& menu, const CameraManagement& cameras);

/// Appends the program's commands, set off by separators.
void addCommandItems(NSMenu& menu);

}  // namespace vistrel
