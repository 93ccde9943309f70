#pragma once

#include <memory>

#include "KeyboardShortcuts/RecorderCocoa.h"
#include "swiftui/NSViewRepresentable.h"

namespace vistrel::KeyboardShortcuts {

/// A recorder's place among declarative views.
class Recorder final : public swiftui::NSViewRepresentable {
 public:
  explicit Recorder(Name name, RecorderCocoa::OnChange onChange = {});

  [[nodiscard]] std::shared_ptr<NSView> makeNSView() const override;
  /// Writes the name; the callback stays that of the first making.
  void updateNSView(NSView& view) const override;

 private:
  Name name_;
  RecorderCocoa::OnChange onChange_;
};

}  // namespace vistrel::KeyboardShortcuts
