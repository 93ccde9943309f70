#include "appkit/NSSearchField.h"

#include <utility>

namespace vistrel {

namespace {
constexpr const char* kClearAction = "clearText:";
constexpr Size kIntrinsicSize{100, 22};
}  // namespace

void NSTextView::setInsertionPointColor(const CGColor& color) {
  insertionPointColor_ = color;
  field_.didChange();
}

NSSearchField::NSSearchField() {
  implement(kClearAction, [this](NSObject*) { userChangedText({}); });
  auto button = std::make_shared<NSButtonCell>();
  button->setTarget(this, kClearAction);
  auto cell = std::make_unique<NSSearchFieldCell>();
  cell->setCancelButtonCell(std::move(button));
  cell_ = std::move(cell);
}

bool NSSearchField::showsCancelButton() const {
  const auto* searchCell = dynamic_cast<const NSSearchFieldCell*>(cell_.get());
  return searchCell && searchCell->cancelButtonCell();
}

void NSSearchField::setCancelButtonCell(std::shared_ptr<NSButtonCell> button) {
  auto* searchCell = dynamic_cast<NSSearchFieldCell*>(cell_.get());
  if (!searchCell) return;
  searchCell->setCancelButtonCell(std::move(button));
  didChange();
}

void NSSearchField::setPlaceholderString(std::string text) {
  placeholder_ = std::move(text);
  didChange();
}

bool NSSearchField::becomeFirstResponder() {
  if (!isEnabled()) return false;
  editor_ = std::make_unique<NSTextView>(*this);
  didChange();
  return true;
}

bool NSSearchField::resignFirstResponder() {
  // Taken first: the delegate may move the focus again.
  if (!std::exchange(editor_, nullptr)) return true;
  didChange();
  if (delegate_) delegate_->controlTextDidEndEditing(*this);
  return true;
}

Size NSSearchField::intrinsicContentSize() const { return kIntrinsicSize; }

void NSSearchField::userChangedText(std::string text) {
  setStringValue(std::move(text));
  if (delegate_) delegate_->controlTextDidChange(*this);
}

}  // namespace vistrel
