#pragma once

#include <memory>
#include <string>

#include "appkit/CALayer.h"
#include "appkit/NSControl.h"

namespace vistrel {

class NSSearchField;

/// What edits a field's text while the field has the focus.
class NSTextView {
 public:
  /// `field` is what it edits, and outlives it.
  explicit NSTextView(NSView& field) : field_(field) {}
  /// The color of the caret; a clear one hides it.
  void setInsertionPointColor(const CGColor& color);
  [[nodiscard]] bool isCaretVisible() const { return insertionPointColor_.alpha > 0; }

 private:
  NSView& field_;
  CGColor insertionPointColor_;
};

/// The drawing of a search field: which of its two buttons it has at present.
class NSSearchFieldCell : public NSCell {
 public:
  /// The button that empties the field; null: none is shown.
  [[nodiscard]] const std::shared_ptr<NSButtonCell>& cancelButtonCell() const { return cancelButtonCell_; }
  void setCancelButtonCell(std::shared_ptr<NSButtonCell> cell) { cancelButtonCell_ = std::move(cell); }
  /// The magnifier; null: none is shown.
  [[nodiscard]] const std::shared_ptr<NSButtonCell>& searchButtonCell() const { return searchButtonCell_; }
  void setSearchButtonCell(std::shared_ptr<NSButtonCell> cell) { searchButtonCell_ = std::move(cell); }

 private:
  std::shared_ptr<NSButtonCell> cancelButtonCell_;
  std::shared_ptr<NSButtonCell> searchButtonCell_ = std::make_shared<NSButtonCell>();
};

/// Told what the user does to a field's text.
class NSSearchFieldDelegate {
 public:
  virtual ~NSSearchFieldDelegate() = default;
  /// The user changed the text, by typing or by the clear button.
  virtual void controlTextDidChange(NSSearchField& field) = 0;
  /// The field lost the focus.
  virtual void controlTextDidEndEditing(NSSearchField& field) = 0;
};

/// A line of text that the user edits, with a button that empties it. It is edited while it is its window's
/// first responder. Main thread only.
class NSSearchField : public NSTextField {
 public:
  NSSearchField();

  [[nodiscard]] NSCell* cell() const { return cell_.get(); }
  /// Where the cell is a search-field cell: whether it shows the clear button.
  [[nodiscard]] bool showsCancelButton() const;
  void setCancelButtonCell(std::shared_ptr<NSButtonCell> button);

  [[nodiscard]] const std::string& placeholderString() const { return placeholder_; }
  void setPlaceholderString(std::string text);
  [[nodiscard]] bool centersPlaceholder() const { return centersPlaceholder_; }
  void setCentersPlaceholder(bool centers) { centersPlaceholder_ = centers; }
  [[nodiscard]] NSTextAlignment alignment() const { return alignment_; }
  void setAlignment(NSTextAlignment alignment) { alignment_ = alignment; }
  /// The delegate must outlive the field's use, or be the field itself.
  void setDelegate(NSSearchFieldDelegate* delegate) { delegate_ = delegate; }

  [[nodiscard]] bool acceptsFirstResponder() const override { return true; }
  bool becomeFirstResponder() override;
  bool resignFirstResponder() override;
  /// The editor at work; null while the field is not edited.
  [[nodiscard]] NSTextView* currentEditor() const { return editor_.get(); }

  [[nodiscard]] Size intrinsicContentSize() const override;

  /// The user left this text in the field. For backends, and for the clear button.
  void userChangedText(std::string text);

 private:
  std::unique_ptr<NSCell> cell_;
  std::string placeholder_;
  bool centersPlaceholder_ = false;
  NSTextAlignment alignment_ = NSTextAlignment::Natural;
  NSSearchFieldDelegate* delegate_ = nullptr;
  std::unique_ptr<NSTextView> editor_;
};

}  // namespace vistrel
