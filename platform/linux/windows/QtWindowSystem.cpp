#include "linux/windows/QtWindowSystem.h"

#include "linux/windows/QtAlert.h"

namespace vistrel::windows {

std::unique_ptr<backend::NativeWindow> QtWindowSystem::makeWindow(NSWindow& window,
                                                                  backend::WindowClient& client) {
  return std::make_unique<QtWindow>(window, client, surroundings_);
}

void QtWindowSystem::setOutsidePressClient(backend::OutsidePressClient* client) {
  outsidePresses_.setClient(client);
}

void QtWindowSystem::showAlert(const std::shared_ptr<NSAlert>& alert, NSWindow* parent) {
  const auto* native = parent ? dynamic_cast<QtWindow*>(parent->native()) : nullptr;
  showQtAlert(alert, native ? &native->widget() : nullptr);
}

}  // namespace vistrel::windows
