#pragma once

#include <memory>
#include <optional>
#include <string>

#include "appkit/FrameAutosave.h"
#include "appkit/NSAppearance.h"
#include "appkit/NSControl.h"
#include "appkit/NSResponder.h"
#include "backend/Windows.h"

namespace vistrel {

class NSAlert;
class NSPopUpButton;
class NSView;

/// Posted by a window on the default centre when the keyboard comes to it or leaves it.
inline constexpr const char* NSWindowDidBecomeKeyNotification = "NSWindowDidBecomeKeyNotification";
inline constexpr const char* NSWindowDidResignKeyNotification = "NSWindowDidResignKeyNotification";

enum class NSWindowStyleMask : unsigned { Borderless = 0, Titled = 1, Closable = 2 };
[[nodiscard]] constexpr unsigned operator|(NSWindowStyleMask a, NSWindowStyleMask b) {
  return static_cast<unsigned>(a) | static_cast<unsigned>(b);
}
enum class NSBackingStoreType { Buffered = 2 };
enum class NSWindowButton { Close = 0 };

/// What kind of native window a backend makes.
enum class NSWindowKind {
  Titled,     ///< an ordinary window with the window manager's frame
  Popover,    ///< attached to an icon, no frame, in front, not in the window list
  Detached,   ///< a torn-off popover: no frame, in front, in the window list
  StatusBar,  ///< the status area; has no native window of its own
};

/// The edge of an anchor on which a popover hangs, and the point at which its tip touches it.
struct PopoverTip {
  enum class Side { Below, Above, RightOf, LeftOf };
  Side side = Side::Below;
  Point location;  ///< on the desktop
  bool operator==(const PopoverTip&) const = default;
};

/// A window: owner of a view tree, of the first responder and of its place. Once on screen it stays alive
/// until it is closed. Main thread only.
class NSWindow : public NSResponder,
                 public backend::WindowClient,
                 public std::enable_shared_from_this<NSWindow> {
 public:
  /// `styleMask` is made of `NSWindowStyleMask` bits; `contentRect` is the content's place on the desktop.
  [[nodiscard]] static std::shared_ptr<NSWindow> create(const Rect& contentRect, unsigned styleMask,
                                                        NSBackingStoreType backing, bool defer);
  NSWindow(NSWindowKind kind, const Rect& contentRect, unsigned styleMask);
  ~NSWindow() override;

  [[nodiscard]] NSWindowKind kind() const { return kind_; }
  void setKind(NSWindowKind kind);
  [[nodiscard]] unsigned styleMask() const { return styleMask_; }
  void setStyleMask(unsigned mask);

  /// The content's rectangle on the desktop, in points.
  [[nodiscard]] const Rect& frame() const { return frame_; }
  void setFrame(const Rect& frame);
  void center();
  /// Restores the frame that was saved under the name, moved onto a screen, and saves it there from now on.
  void setFrameAutosaveName(const std::string& name);

  [[nodiscard]] const std::string& title() const { return title_; }
  void setTitle(std::string title);
  /// What a screen reader says of the window beside its title.
  [[nodiscard]] const std::string& accessibilityHelp() const { return accessibilityHelp_; }
  void setAccessibilityHelp(std::string text);
  [[nodiscard]] const std::optional<PopoverTip>& tip() const { return tip_; }
  void setTip(std::optional<PopoverTip> tip) { tip_ = tip; }
  void setReleasedWhenClosed(bool /*isReleased*/) {}

  [[nodiscard]] const std::shared_ptr<NSView>& contentView() const { return contentView_; }
  void setContentView(std::shared_ptr<NSView> view);
  [[nodiscard]] NSAppearance effectiveAppearance() const;
  void setAppearance(std::optional<NSAppearance> appearance);
  /// The desktop's changed, which a window without one of its own follows.
  void appearanceDidChange();

  void makeKeyAndOrderFront(NSObject* sender);
  /// Announces `makeKeyAndOrderFront`: what its content does until then may block the main thread, and the
  /// desktop shows the window before that.
  void willOrderFront();
  void orderOut(NSObject* sender);
  /// Asks as the close button does, in vain while a sheet is attached; `close` obeys and aborts the sheet.
  virtual void performClose(NSObject* sender);
  void close();
  void activate();
  [[nodiscard]] bool isVisible() const { return isVisible_; }
  /// Whether the desktop shows it indeed, which is asked anew.
  [[nodiscard]] bool isOnScreen() const { return native_ && native_->isOnScreen(); }
  /// Whether the desktop has said that it keeps the window off the screen for now.
  [[nodiscard]] bool isPutAside() const { return isPutAside_; }
  [[nodiscard]] bool isKeyWindow() const { return isVisible_ && isKey_; }

  /// The alert that waits on this window for an answer.
  [[nodiscard]] const std::shared_ptr<NSAlert>& attachedSheet() const { return sheet_; }
  void setAttachedSheet(std::shared_ptr<NSAlert> sheet) { sheet_ = std::move(sheet); }

  /// Moves the keyboard focus; null takes it from every view. False when the present or the new first
  /// responder refuses.
  bool makeFirstResponder(NSResponder* responder);
  [[nodiscard]] NSResponder* firstResponder() const { return firstResponder_; }
  [[nodiscard]] NSResponder* firstResponderOrSelf();

  /// The standard button; null where the style has none.
  [[nodiscard]] NSButton* standardWindowButton(NSWindowButton button) const;
  [[nodiscard]] std::shared_ptr<NSButton> closeButton() const;

  [[nodiscard]] Rect convertRectToScreen(const Rect& rect) const;

  /// Whether the pointer is over the content.
  [[nodiscard]] bool isPointerInside() const { return isPointerInside_; }

  /// Delivers an event of this window. True when it was taken.
  virtual bool sendEvent(const NSEvent& event);

  /// Brings the native window to the screen, once for each ordering front.
  void map();

  // From views.
  void viewDidChange(NSView& view);
  void contentDidChange();
  void popUpMenu(NSPopUpButton& button);
  [[nodiscard]] backend::NativeWindow* native() const { return native_.get(); }

  // backend::WindowClient
  void closeRequested() override;
  void didGainFocus() override;
  void didLoseFocus() override;
  void didMove(const Rect& frame) override;
  void didLeaveScreen(backend::Hiding how) override;
  void didReturnToScreen() override { isPutAside_ = false; }
  void dragDidBegin() override {}
  void pointerDidEnter() override;
  void pointerDidLeave() override;
  void focusWanted(NSView* view) override;
  void viewClicked(NSView& view) override;
  bool handleEvent(const std::shared_ptr<NSEvent>& event) override;

 private:
  [[nodiscard]] bool isClosable() const;
  void updateCloseButton();
  void makeNative();
  void setKey(bool isKey);
  void tellTrackingOwners(NSEventType type);

  NSWindowKind kind_;
  unsigned styleMask_;
  Rect frame_;
  FrameAutosave autosave_{frame_};
  std::string title_;
  std::string accessibilityHelp_;
  std::optional<PopoverTip> tip_;
  std::optional<NSAppearance> appearance_;
  std::shared_ptr<NSView> contentView_;
  std::shared_ptr<NSButton> closeButton_;
  std::shared_ptr<NSAlert> sheet_;
  NSResponder* firstResponder_ = nullptr;
  std::unique_ptr<backend::NativeWindow> native_;
  bool isMapped_ = false;
  bool isVisible_ = false;
  bool isPutAside_ = false;
  bool isKey_ = false;
  bool isPointerInside_ = false;
};

}  // namespace vistrel
