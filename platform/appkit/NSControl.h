#pragma once

#include <memory>
#include <string>

#include "appkit/NSEvent.h"
#include "appkit/NSImage.h"
#include "appkit/NSView.h"

namespace vistrel {

/// How a control draws itself; the part of it that a subclass of control may exchange.
class NSCell {
 public:
  virtual ~NSCell() = default;
};

enum class NSCellImagePosition { NoImage = 0, ImageOnly = 1 };
enum class NSBezelStyle { Rounded = 1, TexturedRounded = 11 };

enum class NSTextAlignment { Left = 0, Center = 1, Right = 2, Natural = 4 };

/// What draws and presses a button. The desktop's style draws it here: image position and bezel are ignored.
class NSButtonCell : public NSCell {
 public:
  /// Whom a press tells, and how; the target must outlive the cell's use.
  void setTarget(NSObject* target, Selector action);
  /// As if the user pressed the cell's button.
  void performClick(NSObject* sender);
  static void setImagePosition(NSCellImagePosition /*position*/) {}
  static void setBezelStyle(NSBezelStyle /*style*/) {}

 private:
  NSObject* target_ = nullptr;
  Selector action_;
};

class NSPopUpButtonCell : public NSButtonCell {};

/// A view that the user operates and that sends an action up the responder chain.
class NSControl : public NSView {
 public:
  [[nodiscard]] const Selector& action() const { return action_; }
  void setAction(Selector action) { action_ = std::move(action); }
  [[nodiscard]] bool isEnabled() const { return isEnabled_; }
  void setEnabled(bool isEnabled);
  /// Sends the action with this control as sender.
  void sendAction();

 private:
  Selector action_;
  bool isEnabled_ = true;
};

/// A push button.
class NSButton : public NSControl {
 public:
  NSButton();
  [[nodiscard]] NSButtonCell* cell() const { return cell_.get(); }
  [[nodiscard]] const std::string& title() const { return title_; }
  void setTitle(std::string title);
  [[nodiscard]] const std::shared_ptr<NSImage>& image() const { return image_; }
  virtual void setImage(std::shared_ptr<NSImage> image);
  [[nodiscard]] bool isHighlighted() const { return isHighlighted_; }
  virtual void setHighlighted(bool isHighlighted);
  /// The events on which the action is sent, as a mask; returns the mask before.
  NSEventMask sendActionOn(NSEventMask mask);
  [[nodiscard]] NSEventMask actionMask() const { return actionMask_; }
  void performClick(NSObject* sender) override;

 protected:
  explicit NSButton(std::unique_ptr<NSButtonCell> cell) : cell_(std::move(cell)) {}

 private:
  std::unique_ptr<NSButtonCell> cell_;
  std::string title_;
  std::shared_ptr<NSImage> image_;
  bool isHighlighted_ = false;
  NSEventMask actionMask_ = maskOf(NSEventType::LeftMouseUp);
};

/// A line or paragraph of text that the user does not edit.
class NSTextField : public NSControl {
 public:
  [[nodiscard]] const std::string& stringValue() const { return stringValue_; }
  virtual void setStringValue(std::string text);

 private:
  std::string stringValue_;
};

/// A picture from the resources, scaled to fit.
class NSImageView : public NSControl {
 public:
  [[nodiscard]] const std::shared_ptr<NSImage>& image() const { return image_; }
  void setImage(std::shared_ptr<NSImage> image);

 private:
  std::shared_ptr<NSImage> image_;
};

}  // namespace vistrel
