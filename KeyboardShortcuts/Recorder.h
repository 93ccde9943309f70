#pragma once

#include <memory>
#include <utility>

#include "KeyboardShortcuts/RecorderCocoa.h"
#include "swiftui/NSViewRepresentable.h"

namespace vistrel::KeyboardShortcuts {

/// A recorder's place among declarative views.
class Recorder final : public swiftui::NSViewRepresentable {
 public:
  explicit Recorder(Name name, RecorderCocoa::OnChange onChange = {})
      : name_(std::move(name)), onChange_(std::move(onChange)) {}

  [[nodiscard]] std::shared_ptr<NSView> makeNSView() const override {
    return std::make_shared<RecorderCocoa>(name_, onChange_);
  }
  /// Writes the name; the callback stays that of the first making.
  void updateNSView(NSView& view) const override {
    if (auto* recorder = dynamic_cast<RecorderCocoa*>(&view)) recorder->setShortcutName(name_);
  }

 private:
  Name name_;
  RecorderCocoa::OnChange onChange_;
};

}  // namespace vistrel::KeyboardShortcuts
