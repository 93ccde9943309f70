#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "backend/Windows.h"

namespace vistrel::simulated {

class SimulatedWindows;

/// A window that is on screen when it says so, with the commands that it was given.
class SimulatedWindow final : public backend::NativeWindow {
 public:
  SimulatedWindow(SimulatedWindows& owner, NSWindow& window, backend::WindowClient& client);
  ~SimulatedWindow() override;

  void contentDidChange() override {}
  void show() override;
  void hide() override { isOnScreen_ = false; }
  [[nodiscard]] bool isOnScreen() const override { return isOnScreen_; }
  void attributesDidChange() override {}
  void viewDidChange(NSView& /*view*/) override {}
  void firstResponderDidChange(NSView* view) override { focused_ = view; }
  void popUpMenu(NSPopUpButton& button) override { openMenu_ = &button; }
  void activate() override {}

  [[nodiscard]] NSWindow& window() const { return window_; }
  [[nodiscard]] backend::WindowClient& client() const { return client_; }
  [[nodiscard]] NSView* focused() const { return focused_; }
  /// The button whose menu is open; null when none is.
  [[nodiscard]] NSPopUpButton* openMenu() const { return openMenu_; }

 private:
  SimulatedWindows& owner_;
  NSWindow& window_;
  backend::WindowClient& client_;
  NSView* focused_ = nullptr;
  NSPopUpButton* openMenu_ = nullptr;
  bool isOnScreen_ = false;
};

/// The windows of the simulated desktop.
class SimulatedWindows final : public backend::WindowSystem {
 public:
  std::unique_ptr<backend::NativeWindow> makeWindow(NSWindow& window, backend::WindowClient& client) override;
  void flush() override {}
  void setOutsidePressClient(backend::OutsidePressClient* client) override { outsideClient_ = client; }
  void showAlert(const std::shared_ptr<NSAlert>& alert, NSWindow* parent) override;

  /// The windows on screen, the newest last.
  [[nodiscard]] std::vector<SimulatedWindow*> onScreen() const;
  /// The newest window on screen of that title; stops the program when there is none.
  [[nodiscard]] SimulatedWindow& titled(const std::string& title) const;
  /// Where a press is reported that hits none of the program's windows. Reports nothing when nobody listens.
  using Press = backend::OutsidePressClient::Press;
  void pressOutside(Point location, Press press = Press::HandedOn);

  /// Called when a window comes to the screen.
  std::function<void()> whenShown;
  /// Alerts that wait for an answer.
  std::vector<std::shared_ptr<NSAlert>> alerts;

 private:
  friend class SimulatedWindow;
  std::vector<SimulatedWindow*> windows_;
  backend::OutsidePressClient* outsideClient_ = nullptr;
};

}  // namespace vistrel::simulated
