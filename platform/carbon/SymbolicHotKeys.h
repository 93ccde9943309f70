#pragma once

#include <any>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "carbon/Status.h"

namespace vistrel {

inline constexpr const char* kHISymbolicHotKeyEnabled = "kHISymbolicHotKeyEnabled";
inline constexpr const char* kHISymbolicHotKeyCode = "kHISymbolicHotKeyCode";
inline constexpr const char* kHISymbolicHotKeyModifiers = "kHISymbolicHotKeyModifiers";

using SymbolicHotKeys = std::vector<std::map<std::string, std::any>>;

/// The desktop's own shortcuts as they are now, one dictionary each; no array without a known desktop.
OSStatus CopySymbolicHotKeys(std::optional<SymbolicHotKeys>* result);

/// Sends every key to the program's focused window, the desktop's own shortcuts included, until the mode is
/// popped. False when the window system refuses it; then there is nothing to pop.
[[nodiscard]] bool PushSymbolicHotKeyMode();
void PopSymbolicHotKeyMode();

}  // namespace vistrel
