#pragma once

#include <map>
#include <string>
#include <vector>

#include "backend/Backend.h"
#include "base/Log.h"

namespace vistrel::simulated {

/// The preferences file in memory, with a disk that can be told to fail.
class SimulatedUserFiles final : public backend::UserFiles {
 public:
  Result<std::optional<std::string>> readPreferences() override;
  void editPreferences(Edit edit, Edited edited) override;
  Result<std::optional<std::string>> setPreferencesAside(const std::string& unreadable) override;

  std::optional<std::string> preferences;
  std::vector<std::string> setAside;
  std::string readError;
  std::string writeError;
};

/// Resources: files given by a test, else those of a real folder.
class SimulatedResources final : public backend::Resources {
 public:
  explicit SimulatedResources(std::string directory) : directory_(std::move(directory)) {}
  [[nodiscard]] std::string resourceDirectory() const override { return directory_; }
  [[nodiscard]] std::string executablePath() const override { return directory_ + "/../vistrel"; }
  [[nodiscard]] std::optional<std::string> read(const std::string& path) const override;
  [[nodiscard]] bool isDirectory(const std::string& path) const override;
  [[nodiscard]] std::string translation(const std::string& text) const override {
    const auto found = translations.find(text);
    return found == translations.end() ? text : found->second;
  }

  /// By path below the resource folder; an empty optional hides a real file.
  std::map<std::string, std::optional<std::string>> overrides;
  std::map<std::string, std::string> translations;

 private:
  std::string directory_;
};

class SimulatedLoginItems final : public backend::LoginItems {
 public:
  Result<std::vector<backend::LoginItem>> items() override;
  Result<void> setEnabled(const std::string& label, bool isEnabled) override;

  std::vector<backend::LoginItem> entries;
  std::string readError;
  std::string writeError;
};

class SimulatedHotKeys final : public backend::HotKeys {
 public:
  bool grab(std::uint32_t token, backend::HotKeyCombination combination) override;
  void release(std::uint32_t token) override { grabs.erase(token); }
  void setHandler(std::function<void(std::uint32_t, backend::HotKeyPhase)> handler) override {
    handler_ = std::move(handler);
  }

  /// Presses and releases the keys of every grab of that combination; false when nobody holds it.
  bool press(backend::HotKeyCombination combination);
  bool send(backend::HotKeyCombination combination, backend::HotKeyPhase phase);

  std::map<std::uint32_t, backend::HotKeyCombination> grabs;
  /// Combinations that another program holds.
  std::vector<backend::HotKeyCombination> taken;

 private:
  std::function<void(std::uint32_t, backend::HotKeyPhase)> handler_;
};

class SimulatedKeyboard final : public backend::Keyboard {
 public:
  SimulatedKeyboard();
  [[nodiscard]] std::optional<std::string> displayCharacter(std::uint16_t keyCode) override;
  [[nodiscard]] std::optional<std::vector<backend::HotKeyCombination>> symbolicHotKeys() override {
    return symbolic;
  }
  void beep() override { ++beeps; }
  bool setKeyboardCaptured(bool wanted) override {
    isCaptured = wanted && !refusesCapture;
    return isCaptured == wanted;
  }

  /// Unshifted texts by virtual key code; a key that is missing types nothing.
  std::map<std::uint16_t, std::string> layout;
  bool hasLayout = true;
  std::optional<std::vector<backend::HotKeyCombination>> symbolic;
  int beeps = 0;
  bool isCaptured = false;
  bool refusesCapture = false;
};

class SimulatedSession final : public backend::Session {
 public:
  void setClient(backend::SessionClient* client) override { client_ = client; }
  [[nodiscard]] std::vector<backend::Screen> screens() override { return screenList; }
  [[nodiscard]] Point pointerLocation() override { return pointer; }
  [[nodiscard]] bool isDark() override { return dark; }
  [[nodiscard]] bool isScreenReaderOn() override { return hasScreenReader; }
  void announce(const std::string& text) override { announcements.push_back(text); }
  [[nodiscard]] bool increasesContrast() override { return isContrastHigh; }
  [[nodiscard]] Version platformVersion() override { return version; }
  bool openUrl(const std::string& url) override;
  [[nodiscard]] backend::SessionClient& client() const;

  std::vector<backend::Screen> screenList = {{"main", {0, 0, 1280, 800}, {0, 28, 1280, 772}, 1, true}};
  Point pointer{640, 400};
  bool dark = false;
  bool hasScreenReader = false;
  std::vector<std::string> announcements;
  bool isContrastHigh = false;
  bool hasBrowser = true;
  Version version{12, 0, 0};
  std::vector<std::string> openedUrls;

 private:
  backend::SessionClient* client_ = nullptr;
};

}  // namespace vistrel::simulated
