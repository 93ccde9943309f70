#pragma once

#include <memory>
#include <string>
#include <utility>

#include "appkit/NSEvent.h"
#include "foundation/NSObject.h"

namespace vistrel {

class NSImage;
class NSMenu;

enum class NSControlState { Off = 0, On = 1 };

/// One row of a menu: plain data, drawn by a backend. Its title is shown as text, on one line.
class NSMenuItem : public NSObject {
 public:
  explicit NSMenuItem(std::string title = {}, Selector action = {}, std::string keyEquivalent = {})
      : title_(std::move(title)), action_(std::move(action)), keyEquivalent_(std::move(keyEquivalent)) {}
  [[nodiscard]] static std::shared_ptr<NSMenuItem> separatorItem() {
    auto item = std::make_shared<NSMenuItem>();
    item->isSeparator_ = true;
    return item;
  }

  [[nodiscard]] const std::string& title() const { return title_; }
  void setTitle(std::string title) { title_ = std::move(title); }
  [[nodiscard]] const Selector& action() const { return action_; }
  void setAction(Selector action) { action_ = std::move(action); }
  [[nodiscard]] NSControlState state() const { return state_; }
  void setState(NSControlState state) { state_ = state; }
  [[nodiscard]] const std::shared_ptr<NSImage>& image() const { return image_; }
  void setImage(std::shared_ptr<NSImage> image) { image_ = std::move(image); }
  [[nodiscard]] const std::string& keyEquivalent() const { return keyEquivalent_; }
  void setKeyEquivalent(std::string text) { keyEquivalent_ = std::move(text); }
  [[nodiscard]] NSEventModifierFlags keyEquivalentModifierMask() const { return mask_; }
  void setKeyEquivalentModifierMask(NSEventModifierFlags mask) { mask_ = mask; }
  [[nodiscard]] const std::shared_ptr<NSMenu>& submenu() const { return submenu_; }
  void setSubmenu(std::shared_ptr<NSMenu> submenu) { submenu_ = std::move(submenu); }
  [[nodiscard]] bool isSeparatorItem() const { return isSeparator_; }

 private:
  std::string title_;
  Selector action_;
  std::string keyEquivalent_;
  NSEventModifierFlags mask_;
  NSControlState state_ = NSControlState::Off;
  std::shared_ptr<NSImage> image_;
  std::shared_ptr<NSMenu> submenu_;
  bool isSeparator_ = false;
};

}  // namespace vistrel
