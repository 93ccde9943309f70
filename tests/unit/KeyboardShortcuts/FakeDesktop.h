#pragma once

#include <cstdlib>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "backend/Backend.h"
#include "foundation/UserDefaults.h"

namespace vistrel::testing {

/// A desktop with a keyboard, a preferences file and a main queue, all scripted; nothing else.
class FakeDesktop final : public backend::Backend,
                          public backend::HotKeys,
                          public backend::Keyboard,
                          public backend::UserFiles,
                          public backend::MainLoop {
 public:
  FakeDesktop() {
    backend::install(this);
    UserDefaults::standard().reset();
    KeyboardShortcuts::resetForNewProcess();
  }
  ~FakeDesktop() override {
    KeyboardShortcuts::resetForNewProcess();
    backend::install(nullptr);
  }

  using Combination = std::pair<std::uint32_t, std::uint32_t>;
  std::map<std::uint32_t, Combination> grabs;
  std::set<Combination> takenByOthers;
  std::map<std::uint16_t, std::string> characters;
  bool hasKeymap = true;
  backend::Keyboard* realKeyboard = nullptr;  ///< answers what is not scripted, where there is one
  backend::HotKeys* realHotKeys = nullptr;    ///< takes the grabs instead, where there is one
  std::optional<std::vector<backend::HotKeyCombination>> desktopShortcuts;
  std::vector<std::function<void()>> queue;

  /// What the window system tells of a combination; nothing for one that is not grabbed.
  void tell(std::uint32_t keyCode, std::uint32_t modifiers, backend::HotKeyPhase phase) {
    const auto snapshot = grabs;
    for (const auto& [token, combination] : snapshot) {
      if (combination == Combination{keyCode, modifiers}) handler_(token, phase);
    }
  }
  void press(std::uint32_t keyCode, std::uint32_t modifiers) {
    tell(keyCode, modifiers, backend::HotKeyPhase::Pressed);
    tell(keyCode, modifiers, backend::HotKeyPhase::Released);
  }
  void turn() {
    for (const auto& work : std::exchange(queue, {})) work();
  }

  bool grab(std::uint32_t token, backend::HotKeyCombination wanted) override {
    const Combination combination{wanted.keyCode, wanted.modifiers};
    if (takenByOthers.contains(combination)) return false;
    grabs.emplace(token, combination);
    return true;
  }
  void release(std::uint32_t token) override { grabs.erase(token); }
  void setHandler(std::function<void(std::uint32_t, backend::HotKeyPhase)> handler) override {
    handler_ = std::move(handler);
  }

  std::optional<std::string> displayCharacter(std::uint16_t keyCode) override {
    if (realKeyboard) return realKeyboard->displayCharacter(keyCode);
    return hasKeymap ? std::optional(characters[keyCode]) : std::nullopt;
  }
  std::optional<std::vector<backend::HotKeyCombination>> symbolicHotKeys() override {
    return desktopShortcuts || !realKeyboard ? desktopShortcuts : realKeyboard->symbolicHotKeys();
  }
  void beep() override {}
  bool setKeyboardCaptured(bool) override { return true; }

  Result<std::optional<std::string>> readPreferences() override { return file_; }
  Result<void> editPreferences(const Edit& edit) override {
    if (auto content = edit(file_)) file_ = std::move(content);
    return {};
  }
  Result<std::optional<std::string>> setPreferencesAside(const std::string&) override {
    return std::optional<std::string>();
  }

  int run() override { return 0; }
  void quit() override {}
  void post(std::function<void()> work) override { queue.push_back(std::move(work)); }
  std::unique_ptr<backend::Timer> after(std::chrono::milliseconds, std::function<void()>) override {
    return {};
  }
  void runModal() override {}
  void endModal() override {}

  backend::MainLoop& mainLoop() override { return *this; }
  backend::UserFiles& userFiles() override { return *this; }
  backend::HotKeys& hotKeys() override { return realHotKeys ? *realHotKeys : *this; }
  backend::Keyboard& keyboard() override { return *this; }
  backend::Resources& resources() override { std::abort(); }
  backend::LoginItems& loginItems() override { std::abort(); }
  backend::Session& session() override { std::abort(); }
  backend::StatusArea& statusArea() override { std::abort(); }
  backend::WindowSystem& windows() override { std::abort(); }
  backend::Cameras& cameras() override { std::abort(); }

 private:
  std::function<void(std::uint32_t, backend::HotKeyPhase)> handler_;
  std::optional<std::string> file_;
};

}  // namespace vistrel::testing
