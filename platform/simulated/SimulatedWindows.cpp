#include "simulated/SimulatedWindows.h"

#include "appkit/NSWindow.h"
#include "base/Log.h"

namespace vistrel::simulated {

SimulatedWindow::SimulatedWindow(SimulatedWindows& owner, NSWindow& window, backend::WindowClient& client)
    : owner_(owner), window_(window), client_(client) {
  owner_.windows_.push_back(this);
}

SimulatedWindow::~SimulatedWindow() { std::erase(owner_.windows_, this); }

void SimulatedWindow::show() {
  isOnScreen_ = true;
  if (owner_.whenShown) owner_.whenShown();
}

std::unique_ptr<backend::NativeWindow> SimulatedWindows::makeWindow(NSWindow& window,
                                                                    backend::WindowClient& client) {
  return std::make_unique<SimulatedWindow>(*this, window, client);
}

void SimulatedWindows::showAlert(const std::shared_ptr<NSAlert>& alert, NSWindow* /*parent*/) {
  alerts.push_back(alert);
}

std::vector<SimulatedWindow*> SimulatedWindows::onScreen() const {
  std::vector<SimulatedWindow*> result;
  for (auto* window : windows_) {
    if (window->isOnScreen()) result.push_back(window);
  }
  return result;
}

SimulatedWindow& SimulatedWindows::titled(const std::string& title) const {
  SimulatedWindow* found = nullptr;
  for (auto* window : onScreen()) {
    if (window->window().title() == title) found = window;
  }
  if (!found) fatalError("there is no window on the simulated screen titled " + title);
  return *found;
}

void SimulatedWindows::pressOutside(Point location, Press press) {
  if (outsideClient_) outsideClient_->pressBegan();
  if (outsideClient_) outsideClient_->pressedOutside(location, press);
}

}  // namespace vistrel::simulated
