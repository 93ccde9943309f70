#include "KeyboardShortcuts/Recorder.h"

#include <utility>

namespace vistrel::KeyboardShortcuts {

Recorder::Recorder(Name name, RecorderCocoa::OnChange onChange)
    : name_(std::move(name)), onChange_(std::move(onChange)) {}

std::shared_ptr<NSView> Recorder::makeNSView() const {
  return std::make_shared<RecorderCocoa>(name_, onChange_);
}

void Recorder::updateNSView(NSView& view) const {
  if (auto* recorder = dynamic_cast<RecorderCocoa*>(&view)) recorder->setShortcutName(name_);
}

}  // namespace vistrel::KeyboardShortcuts
