#pragma once

#include <functional>
#include <memory>
#include <string>

#include "appkit/NSImage.h"
#include "foundation/NSObject.h"

namespace vistrel {

class NSWindow;

enum class NSAlertStyle { Warning = 0, Informational = 1, Critical = 2 };

/// What ends an alert: its one button, or the end of the window under it.
enum class NSModalResponse : int { Abort = -1001, FirstButton = 1000 };

/// A message with one button, "OK". Main thread only; held by `std::shared_ptr`.
class NSAlert : public NSObject, public std::enable_shared_from_this<NSAlert> {
 public:
  [[nodiscard]] const std::string& messageText() const { return messageText_; }
  void setMessageText(std::string text) { messageText_ = std::move(text); }
  [[nodiscard]] const std::string& informativeText() const { return informativeText_; }
  void setInformativeText(std::string text) { informativeText_ = std::move(text); }
  [[nodiscard]] NSAlertStyle alertStyle() const { return style_; }
  void setAlertStyle(NSAlertStyle style) { style_ = style; }
  /// Null: the desktop's own picture for the style.
  [[nodiscard]] const std::shared_ptr<NSImage>& icon() const { return icon_; }
  void setIcon(std::shared_ptr<NSImage> icon) { icon_ = std::move(icon); }

  using Completion = std::function<void(NSModalResponse)>;
  /// Shows the alert on a window, whose closing waits for the answer, and returns; `completion` is called
  /// once.
  void beginSheetModalForWindow(NSWindow& window, Completion completion);
  /// Shows the alert by itself and waits for the answer.
  NSModalResponse runModal();

  /// The answer, from a backend or from the closing window; a second one is nothing.
  void respond(NSModalResponse response);

 private:
  std::string messageText_;
  std::string informativeText_;
  NSAlertStyle style_ = NSAlertStyle::Warning;
  std::shared_ptr<NSImage> icon_;
  std::weak_ptr<NSWindow> parent_;
  Completion completion_;
};

/// The desktop's alert sound.
class NSSound {
 public:
  static void beep();
};

}  // namespace vistrel
