#pragma once

#include <optional>
#include <string>
#include <vector>

#include "stage/screen/Screen.h"

namespace vistrel::stage {

struct WindowFacts {
  Window id = 0;
  Window parent = 0;
  Rectangle place;  ///< on the root window
  std::string name;
  std::string className;
  int processId = 0;
  bool isManaged = false;  ///< not override-redirect
  std::vector<std::string> states;
  std::vector<std::string> types;
};

/// Every window that can be seen, from the bottom to the top, children after their parents.
[[nodiscard]] std::vector<WindowFacts> visibleWindows(const Screen& screen);

/// The window that has the keyboard focus, or the one above it that the client made known.
[[nodiscard]] WindowFacts focusedWindow(const Screen& screen);

/// A property of the root window as text: its numbers, atoms by name, or its characters.
[[nodiscard]] std::vector<std::string> rootProperty(const Screen& screen, const std::string& name);

/// Asks the window manager for something about `window`, by that message with that number.
void askManager(const Screen& screen, Window window, const std::string& message, int value);

}  // namespace vistrel::stage
