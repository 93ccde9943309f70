#include "KeyboardShortcuts/RecorderCocoa.h"

#include <utility>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "KeyboardShortcuts/resource_bundle_accessor.h"
#include "appkit/NSAlert.h"
#include "appkit/NSApplication.h"
#include "appkit/NSMenuItem.h"
#include "appkit/NSWindow.h"
#include "base/KeyCodes.h"
#include "base/Log.h"
#include "foundation/MainQueue.h"

namespace vistrel::KeyboardShortcuts {

namespace {

constexpr double kMinimumWidth = 130;
constexpr double kClickMargin = 3;
constexpr CGColor kClearColor{0, 0, 0, 0};
constexpr NSEventMask kWatchedEvents =
    maskOf(NSEventType::KeyDown) | maskOf(NSEventType::LeftMouseUp) | maskOf(NSEventType::RightMouseUp);

bool isMouseUp(const NSEvent& event) {
  return event.type() == NSEventType::LeftMouseUp || event.type() == NSEventType::RightMouseUp;
}

/// The modifiers that make a combination: lock, keypad and function-key flags come with the key, not by
/// choice.
bool hasModifiers(const NSEvent& event) {
  constexpr std::uint64_t kIgnored =
      NSEventModifierFlags::kCapsLock | NSEventModifierFlags::kNumericPad | NSEventModifierFlags::kFunction;
  return (event.modifierFlags().rawValue & NSEventModifierFlags::kDeviceIndependent & ~kIgnored) != 0;
}

bool isFunctionKey(std::optional<NSSpecialKey> key) {
  return key && *key >= NSSpecialKey::F1 && *key <= NSSpecialKey::F35;
}

bool isDeletingKey(std::optional<NSSpecialKey> key) {
  return key == NSSpecialKey::Delete || key == NSSpecialKey::DeleteForward || key == NSSpecialKey::Backspace;
}

}  // namespace

RecorderCocoa::RecorderCocoa(Name shortcutName, OnChange onChange)
    : onChange_(std::move(onChange)), shortcutName_(std::move(shortcutName)) {
  setDelegate(this);
  setPlaceholderString(text::recordShortcut());
  setCentersPlaceholder(true);
  setAlignment(NSTextAlignment::Center);
  if (auto* searchCell = dynamic_cast<NSSearchFieldCell*>(cell())) {
    searchCell->setSearchButtonCell(nullptr);
    cancelButton_ = searchCell->cancelButtonCell();
  }
  refreshText();
  observeChanges();
}

RecorderCocoa::~RecorderCocoa() {
  // A control that goes while it records leaves nothing switched off behind it.
  if (eventMonitor_) setPaused(false);
}

void RecorderCocoa::initWithCoder() { fatalError("init(coder:) has not been implemented"); }

void RecorderCocoa::initWithFrame() {
  fatalError("Use of unimplemented initializer 'init(frame:)' for class 'KeyboardShortcuts.RecorderCocoa'");
}

Size RecorderCocoa::intrinsicContentSize() const {
  return {kMinimumWidth, NSSearchField::intrinsicContentSize().height};
}

void RecorderCocoa::observeChanges() {
  // The token ends with the control, and the observation with it.
  observer_ = NotificationCenter::defaultCenter().addObserver(
      shortcutByNameDidChange, nullptr, [this](const Notification& change) {
        const auto entry = change.userInfo.find(kNameInUserInfo);
        if (entry == change.userInfo.end()) return;
        const auto* name = std::any_cast<Name>(&entry->second);
        if (name && *name == shortcutName_) refreshText();
      });
}

void RecorderCocoa::setShortcutName(const Name& name) {
  const bool isOther = name != shortcutName_;
  shortcutName_ = name;
  if (!isOther) return;
  refreshText();
  MainQueue::async([weak = weak_from_this()] {
    const auto self = weak.lock();
    if (self && self->window()) self->window()->makeFirstResponder(nullptr);
  });
}

void RecorderCocoa::refreshText() {
  const auto shortcut = getShortcut(shortcutName_);
  setStringValue(shortcut ? shortcut->description() : std::string());
  showClearButtonPerText();
}

void RecorderCocoa::showClearButtonPerText() {
  setCancelButtonCell(stringValue().empty() ? nullptr : cancelButton_);
}

bool RecorderCocoa::becomeFirstResponder() {
  if (!NSSearchField::becomeFirstResponder()) return false;
  setPlaceholderString(text::pressShortcut());
  showClearButtonPerText();
  if (NSTextView* editor = currentEditor()) editor->setInsertionPointColor(kClearColor);
  setPaused(true);
  startWatching();
  return true;
}

void RecorderCocoa::startWatching() {
  eventMonitor_ = std::make_shared<LocalEventMonitor>(
      kWatchedEvents, [weak = weak_from_this()](const std::shared_ptr<NSEvent>& event) {
        // Held until the event is dealt with: an alert's loop may take the control's window away.
        const auto self = std::static_pointer_cast<RecorderCocoa>(weak.lock());
        const bool passesOn = self && self->handle(*event) == Verdict::PassOn;
        return passesOn ? event : nullptr;
      });
  eventMonitor_->start();
  if (window() && window()->contentView()) capture_ = std::make_unique<KeyboardCapture>(*window());
}

void RecorderCocoa::controlTextDidEndEditing(NSSearchField& /*field*/) {
  eventMonitor_.reset();
  capture_.reset();
  setPlaceholderString(text::recordShortcut());
  showClearButtonPerText();
  setPaused(false);
}

void RecorderCocoa::controlTextDidChange(NSSearchField& /*field*/) {
  const bool isEmpty = stringValue().empty();
  if (isEmpty) {
    removeStoredShortcut(shortcutName_);
    if (onChange_) onChange_(std::nullopt);
  }
  showClearButtonPerText();
  if (isEmpty && window()) window()->makeFirstResponder(this);
}

void RecorderCocoa::endRecording() {
  if (window()) window()->makeFirstResponder(nullptr);
}

void RecorderCocoa::resumeRecording() {
  if (window()) window()->makeFirstResponder(this);
}

bool RecorderCocoa::isOutside(const NSEvent& event) const {
  if (event.window() && event.window() != window()) return true;
  const Point location = convertPointFromWindow(event.locationInWindow());
  return !bounds().inset(-kClickMargin, -kClickMargin).contains(location);
}

RecorderCocoa::Verdict RecorderCocoa::handle(const NSEvent& event) {
  if (isMouseUp(event) && isOutside(event)) {
    endRecording();
    return Verdict::Swallow;
  }
  return event.isKeyEvent() ? handleKey(event) : Verdict::Swallow;
}

RecorderCocoa::Verdict RecorderCocoa::handleKey(const NSEvent& event) {
  if (!hasModifiers(event)) {
    if (const auto verdict = handlePlainKey(event)) return *verdict;
  }
  if (const auto shortcut = Shortcut::fromEvent(event)) {
    consider(*shortcut);
  } else {
    NSSound::beep();
  }
  return Verdict::Swallow;
}

// A key without a modifier; none for one that may be a shortcut all the same.
std::optional<RecorderCocoa::Verdict> RecorderCocoa::handlePlainKey(const NSEvent& event) {
  const auto key = event.specialKey();
  if (key == NSSpecialKey::Tab) {
    endRecording();
    return Verdict::PassOn;
  }
  if (event.keyCode() == kVK_Escape) {
    endRecording();
    return Verdict::Swallow;
  }
  if (isDeletingKey(key)) {
    pressClearButton();
    return Verdict::Swallow;
  }
  if (isFunctionKey(key)) return std::nullopt;
  NSSound::beep();
  return Verdict::Swallow;
}

void RecorderCocoa::pressClearButton() {
  const auto* searchCell = dynamic_cast<const NSSearchFieldCell*>(cell());
  if (!searchCell) return;
  if (const auto button = searchCell->cancelButtonCell()) button->performClick(this);
}

void RecorderCocoa::consider(const Shortcut& shortcut) {
  if (const auto& menu = NSApplication::shared().mainMenu()) {
    if (const auto item = shortcut.matchingMenuItem(*menu)) {
      refuse(text::usedByMenuItem(item->title()), {});
      return;
    }
  }
  if (shortcut.isTakenBySystem()) {
    refuse(text::usedBySystem(), text::canBeChanged());
    return;
  }
  accept(shortcut);
}

void RecorderCocoa::refuse(const std::string& title, const std::string& explanation) {
  const bool wasOnScreen = window() && window()->isVisible();
  endRecording();
  showAlert(title, explanation);
  const bool isGone = wasOnScreen && (!window() || !window()->isVisible());
  if (!isGone) resumeRecording();
}

void RecorderCocoa::showAlert(const std::string& title, const std::string& explanation) {
  const auto alert = std::make_shared<NSAlert>();
  alert->setMessageText(title);
  alert->setInformativeText(explanation);
  alert->setAlertStyle(NSAlertStyle::Warning);
  alert->setIcon(nullptr);
  if (!window()) {
    alert->runModal();
    return;
  }
  alert->beginSheetModalForWindow(*window(), [parent = window()](NSModalResponse response) {
    NSApplication::shared().stopModal(static_cast<int>(response), parent);
  });
  NSApplication::shared().runModalForWindow(window());
}

void RecorderCocoa::accept(const Shortcut& shortcut) {
  setStringValue(shortcut.description());
  setCancelButtonCell(cancelButton_);
  storeShortcut(shortcut, shortcutName_);
  if (onChange_) onChange_(shortcut);
  endRecording();
}

}  // namespace vistrel::KeyboardShortcuts
