#include "qt/QtWindowSystem.h"

#include <QApplication>
#include <QDialog>
#include <QMenu>

#include "qt/Geometry.h"
#include "qt/QtWindow.h"

namespace vistrel::qt {

QtWindowSystem::QtWindowSystem() = default;
QtWindowSystem::~QtWindowSystem() = default;

std::unique_ptr<host::NativeWindow> QtWindowSystem::makeWindow(NSWindow& window, host::WindowClient& client) {
  return std::make_unique<QtWindow>(window, client, x11_);
}

void QtWindowSystem::setOutsidePressClient(host::OutsidePressClient* client) { client_ = client; }

void QtWindowSystem::showAlert(const std::shared_ptr<NSAlert>& /*alert*/, NSWindow* /*parent*/) {}

}  // namespace vistrel::qt
