#pragma once

#include <cstdlib>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "foundation/UserDefaults.h"
#include "host/Host.h"

namespace vistrel::testing {

/// A desktop with a keyboard, a preferences file and a main queue, all scripted; nothing else.
class FakeDesktop final : public host::Host,
                          public host::HotKeyHost,
                          public host::KeyboardHost,
                          public host::UserFiles,
                          public host::MainLoop {
 public:
  FakeDesktop() {
    host::install(this);
    UserDefaults::standard().reset();
    KeyboardShortcuts::resetForNewProcess();
  }
  ~FakeDesktop() override {
    KeyboardShortcuts::resetForNewProcess();
    host::install(nullptr);
  }

  using Combination = std::pair<std::uint32_t, std::uint32_t>;
  std::map<std::uint32_t, Combination> grabs;
  std::set<Combination> takenByOthers;
  std::map<std::uint16_t, std::string> characters;
  bool hasKeymap = true;
  host::KeyboardHost* realKeyboard = nullptr;  ///< answers what is not scripted, where there is one
  host::HotKeyHost* realHotKeys = nullptr;     ///< takes the grabs instead, where there is one
  std::optional<std::vector<std::map<std::string, std::any>>> desktopShortcuts;
  std::vector<std::function<void()>> queue;

  /// What the window system tells of a combination; nothing for one that is not grabbed.
  void tell(std::uint32_t keyCode, std::uint32_t modifiers, host::HotKeyPhase phase) {
    const auto snapshot = grabs;
    for (const auto& [token, combination] : snapshot) {
      if (combination == Combination{keyCode, modifiers}) handler_(token, phase);
    }
  }
  void press(std::uint32_t keyCode, std::uint32_t modifiers) {
    tell(keyCode, modifiers, host::HotKeyPhase::Pressed);
    tell(keyCode, modifiers, host::HotKeyPhase::Released);
  }
  void turn() {
    for (const auto& work : std::exchange(queue, {})) work();
  }

  bool grab(std::uint32_t token, host::HotKeyCombination wanted) override {
    const Combination combination{wanted.keyCode, wanted.modifiers};
    if (takenByOthers.contains(combination)) return false;
    grabs.emplace(token, combination);
    return true;
  }
  void release(std::uint32_t token) override { grabs.erase(token); }
  void setHandler(std::function<void(std::uint32_t, host::HotKeyPhase)> handler) override {
    handler_ = std::move(handler);
  }

  std::optional<std::string> displayCharacter(std::uint16_t keyCode) override {
    if (realKeyboard) return realKeyboard->displayCharacter(keyCode);
    return hasKeymap ? std::optional(characters[keyCode]) : std::nullopt;
  }
  std::optional<std::vector<std::map<std::string, std::any>>> symbolicHotKeys() override {
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
  std::unique_ptr<host::Timer> after(std::chrono::milliseconds, std::function<void()>) override { return {}; }
  void runModal() override {}
  void endModal() override {}

  host::MainLoop& mainLoop() override { return *this; }
  host::UserFiles& userFiles() override { return *this; }
  host::HotKeyHost& hotKeys() override { return realHotKeys ? *realHotKeys : *this; }
  host::KeyboardHost& keyboard() override { return *this; }
  host::Resources& resources() override { std::abort(); }
  host::LoginItems& loginItems() override { std::abort(); }
  host::SessionHost& session() override { std::abort(); }
  host::StatusArea& statusArea() override { std::abort(); }
  host::WindowSystem& windows() override { std::abort(); }
  host::CameraHost& cameras() override { std::abort(); }

 private:
  std::function<void(std::uint32_t, host::HotKeyPhase)> handler_;
  std::optional<std::string> file_;
};

}  // namespace vistrel::testing
