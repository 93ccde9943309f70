#pragma once

namespace vistrel {

class URL;

/// What the program asks of the rest of the desktop.
class NSWorkspace {
 public:
  static NSWorkspace& shared();
  /// Opens the address in the user's default program for it; false when there is none.
  bool openURL(const URL& url);
  /// Whether a screen reader says that it runs.
  [[nodiscard]] bool isVoiceOverEnabled() const;
  /// Whether the user wants more contrast than usual.
  [[nodiscard]] bool accessibilityDisplayShouldIncreaseContrast() const;
};

}  // namespace vistrel
