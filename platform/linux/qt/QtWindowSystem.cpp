#include "qt/QtWindowSystem.h"

#include "qt/QtAlert.h"
#include "qt/QtWindow.h"

namespace vistrel::qt {

std::unique_ptr<host::NativeWindow> QtWindowSystem::makeWindow(NSWindow& window, host::WindowClient& client) {
  return std::make_unique<QtWindow>(window, client, x11_);
}

void QtWindowSystem::setOutsidePressClient(host::OutsidePressClient* client) {
  outsidePresses_.setClient(client);
}

void QtWindowSystem::showAlert(const std::shared_ptr<NSAlert>& alert, NSWindow* parent) {
  const auto* native = parent ? dynamic_cast<QtWindow*>(parent->native()) : nullptr;
  showQtAlert(alert, native ? &native->widget() : nullptr);
}

}  // namespace vistrel::qt
