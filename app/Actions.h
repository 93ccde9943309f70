#pragma once

/// The actions that menus send and more than one class answers to.
namespace vistrel::action {

inline constexpr const char* kSwitchCameraInput = "switchCameraInputWithSender:";
inline constexpr const char* kOpenAbout = "openAboutWithSender:";
inline constexpr const char* kOpenPreferences = "openPreferencesWithSender:";
inline constexpr const char* kQuit = "quitWithSender:";

}  // namespace vistrel::action
