#pragma once

#include "simulated/SimulatedDesktop.h"

namespace vistrel::simulated {

/// A simulated desktop with the keyboard or the hot keys of a real one.
class DesktopWithKeyboard final : public SimulatedDesktop {
 public:
  DesktopWithKeyboard() : SimulatedDesktop("") {}

  backend::HotKeys& hotKeys() override { return realHotKeys ? *realHotKeys : simulatedHotKeys; }
  backend::Keyboard& keyboard() override { return realKeyboard ? *realKeyboard : keys; }

  backend::Keyboard* realKeyboard = nullptr;
  backend::HotKeys* realHotKeys = nullptr;
};

}  // namespace vistrel::simulated
