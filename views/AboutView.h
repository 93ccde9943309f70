#pragma once

#include <memory>
#include <string>

#include "swiftui/CustomView.h"

namespace vistrel {

class NSWindow;

/// Who made the program, of what, and where to read more.
class AboutView final : public swiftui::CustomView {
 public:
  /// `myWindow` is the window that shows the view, if there is one.
  explicit AboutView(std::weak_ptr<NSWindow> myWindow = {});

  [[nodiscard]] swiftui::View body() override;
  /// The version with the build in parentheses, as far as the information dictionary tells them.
  [[nodiscard]] static std::string versionLine();
  [[nodiscard]] const std::weak_ptr<NSWindow>& myWindow() const { return myWindow_; }

 private:
  std::weak_ptr<NSWindow> myWindow_;
};

/// Opens an address in the user's browser; a text that is no address opens nothing. "page:NAME" is the page
/// of that name that ships with the program.
void openAddress(const std::string& address);

}  // namespace vistrel
