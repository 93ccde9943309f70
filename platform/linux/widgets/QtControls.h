#pragma once

#include "appkit/NSControl.h"
#include "appkit/NSPopUpButton.h"
#include "linux/widgets/QtView.h"

class QAbstractButton;
class QLabel;
class QPushButton;

namespace vistrel::widgets {

class MenuButton;

/// A text that is read and not edited: plain, wrapped, centred.
class QtTextField final : public QtView {
 public:
  QtTextField(NSTextField& field, ViewClient& client);
  void refresh() override;

 private:
  NSTextField& field_;
  QLabel* label_;
};

/// A picture from the resources, in the color of the text around it when it is a template.
class QtImageView final : public QtView {
 public:
  QtImageView(NSImageView& imageView, ViewClient& client);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  NSImageView& imageView_;
};

/// A push button as the desktop draws it.
class QtPushButton final : public QtView {
 public:
  QtPushButton(NSButton& button, ViewClient& client);
  void refresh() override;

 protected:
  [[nodiscard]] std::string accessibleName() const override;

 private:
  NSButton& button_;
  QPushButton* native_;
};

/// A quiet button over the picture that opens a menu; its face is the menu's first item.
class QtPopUpButton final : public QtView {
 public:
  QtPopUpButton(NSPopUpButton& button, ViewClient& client);
  void refresh() override;

 private:
  MenuButton* face_;
};

/// The close button of a window without a frame, over the corner of its content.
class CloseButton final : public QtView {
 public:
  CloseButton(NSButton& button, ViewClient& client);
  void refresh() override;

 private:
  class Cross;
  Cross* cross_;
};

}  // namespace vistrel::widgets
