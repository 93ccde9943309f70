#include "appkit/NSAlert.h"

#include <utility>

#include "appkit/NSApplication.h"
#include "appkit/NSWindow.h"
#include "backend/Backend.h"

namespace vistrel {

void NSAlert::beginSheetModalForWindow(NSWindow& window, Completion completion) {
  completion_ = std::move(completion);
  parent_ = window.weak_from_this();
  window.setAttachedSheet(shared_from_this());
  backend::current().windows().showAlert(shared_from_this(), &window);
}

NSModalResponse NSAlert::runModal() {
  completion_ = [](NSModalResponse response) {
    NSApplication::shared().stopModal(static_cast<int>(response), nullptr);
  };
  backend::current().windows().showAlert(shared_from_this(), nullptr);
  return static_cast<NSModalResponse>(NSApplication::shared().runModalForWindow(nullptr));
}

void NSAlert::respond(NSModalResponse response) {
  const auto kept = shared_from_this();
  const auto completion = std::exchange(completion_, nullptr);
  if (!completion) return;
  if (const auto parent = parent_.lock()) parent->setAttachedSheet(nullptr);
  completion(response);
}

void NSSound::beep() { backend::current().keyboard().beep(); }

}  // namespace vistrel
