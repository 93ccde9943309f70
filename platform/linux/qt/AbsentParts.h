#pragma once

#include "foundation/Log.h"
#include "host/Host.h"

/// Parts of the desktop that are not built yet. Each says so when it is asked for.
namespace vistrel::qt {

class AbsentHotKeys final : public host::HotKeyHost {
 public:
  bool grab(std::uint32_t /*token*/, host::HotKeyCombination /*combination*/) override {
    Log::warning("hot keys are not built yet");
    return false;
  }
  void release(std::uint32_t /*token*/) override {}
  void setHandler(std::function<void(std::uint32_t, host::HotKeyPhase)> /*handler*/) override {}
};

class AbsentKeyboard final : public host::KeyboardHost {
 public:
  std::optional<std::string> displayCharacter(std::uint16_t /*keyCode*/) override {
    Log::warning("the keyboard is not built yet");
    return std::nullopt;
  }
  std::optional<std::vector<std::map<std::string, std::any>>> symbolicHotKeys() override {
    return std::nullopt;
  }
  void beep() override {}
  bool setKeyboardCaptured(bool /*isCaptured*/) override { return false; }
};

class AbsentLoginItems final : public host::LoginItems {
 public:
  Result<std::vector<host::LoginItem>> items() override { return Error{"login items are not built yet"}; }
  Result<void> setEnabled(const std::string& /*label*/, bool /*isEnabled*/) override {
    return Error{"login items are not built yet"};
  }
};

}  // namespace vistrel::qt
