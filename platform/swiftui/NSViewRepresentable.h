#pragma once

#include <memory>

namespace vistrel {
class NSView;
}

namespace vistrel::swiftui {

/// A control of the window's own kind with a place among declarative views.
class NSViewRepresentable {
 public:
  virtual ~NSViewRepresentable() = default;
  /// Makes the control; called once for its place.
  [[nodiscard]] virtual std::shared_ptr<NSView> makeNSView() const = 0;
  /// Brings the control up to date; called after it was made and at each drawing.
  virtual void updateNSView(NSView& view) const = 0;
};

}  // namespace vistrel::swiftui
