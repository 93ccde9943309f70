#include "linux/windows/NativeEvents.h"

#include <array>
#include <optional>

#include "base/KeyCodes.h"

namespace vistrel::windows {

namespace {

// An X key code less this is the Linux event code.
constexpr quint32 kEvdevOffset = 8;
constexpr double kMillisecondsPerSecond = 1000;

struct Modifier {
  Qt::KeyboardModifier native;
  std::uint64_t flag;
};
constexpr std::array<Modifier, 5> kModifiers = {{
    {Qt::ShiftModifier, NSEventModifierFlags::kShift},
    {Qt::ControlModifier, NSEventModifierFlags::kControl},
    {Qt::AltModifier, NSEventModifierFlags::kOption},
    {Qt::MetaModifier, NSEventModifierFlags::kCommand},
    {Qt::KeypadModifier, NSEventModifierFlags::kNumericPad},
}};

bool isModifierKey(const QKeyEvent& event, std::uint16_t keyCode) {
  const bool isLock = event.key() == Qt::Key_NumLock || event.key() == Qt::Key_ScrollLock;
  return isLock || (keyCode >= kVK_RightCommand && keyCode <= kVK_Function);
}

std::uint16_t virtualKeyCode(const QKeyEvent& event) {
  const quint32 code = event.nativeScanCode();
  const auto known = code > kEvdevOffset ? virtualKeyCodeFromEvdev(code - kEvdevOffset) : std::nullopt;
  return known.value_or(NSEvent::kNoKeyCode);
}

NSEventType typeOf(const QKeyEvent& event, std::uint16_t keyCode) {
  if (isModifierKey(event, keyCode)) return NSEventType::FlagsChanged;
  return event.type() == QEvent::KeyRelease ? NSEventType::KeyUp : NSEventType::KeyDown;
}

NSEventType typeOf(const QMouseEvent& event) {
  if (event.type() == QEvent::MouseMove) return NSEventType::RightMouseDragged;
  const bool isRelease = event.type() == QEvent::MouseButtonRelease;
  if (event.button() == Qt::LeftButton) {
    return isRelease ? NSEventType::LeftMouseUp : NSEventType::LeftMouseDown;
  }
  if (event.button() == Qt::RightButton) {
    return isRelease ? NSEventType::RightMouseUp : NSEventType::RightMouseDown;
  }
  return isRelease ? NSEventType::OtherMouseUp : NSEventType::OtherMouseDown;
}

// By the keysym: with Control held the text is a control character.
std::string charactersOf(const QKeyEvent& event) {
  const auto key = static_cast<char32_t>(event.key());
  return key > 0 && key < Qt::Key_Escape ? QString::fromUcs4(&key, 1).toLower().toStdString() : std::string();
}

// A wheel's step is fifteen degrees, told in eighths.
constexpr double kWheelStep = 120;

}  // namespace

NSEventModifierFlags flagsOf(Qt::KeyboardModifiers modifiers) {
  NSEventModifierFlags flags;
  for (const auto& [native, flag] : kModifiers) {
    if (modifiers.testFlag(native)) flags.rawValue |= flag;
  }
  return flags;
}

std::shared_ptr<NSEvent> keyEvent(const QKeyEvent& event, NSWindow& window) {
  const auto keyCode = virtualKeyCode(event);
  return NSEvent::keyEvent({.type = typeOf(event, keyCode),
                            .modifierFlags = flagsOf(event.modifiers()),
                            .keyCode = keyCode,
                            .isARepeat = event.isAutoRepeat(),
                            .characters = charactersOf(event)},
                           &window);
}

std::shared_ptr<NSEvent> buttonEvent(const QMouseEvent& event, QPoint origin, NSWindow& window) {
  const QPointF location = event.position() - origin;
  return NSEvent::mouseEvent({.type = typeOf(event),
                              .location = {location.x(), location.y()},
                              .modifierFlags = flagsOf(event.modifiers()),
                              .timestamp = double(event.timestamp()) / kMillisecondsPerSecond,
                              .clickCount = event.type() == QEvent::MouseButtonDblClick ? 2 : 1},
                             &window);
}

std::shared_ptr<NSEvent> wheelEvent(const QWheelEvent& event, QPoint origin, NSWindow& window) {
  const QPointF location = event.position() - origin;
  return NSEvent::mouseEvent({.type = NSEventType::ScrollWheel,
                              .location = {location.x(), location.y()},
                              .modifierFlags = flagsOf(event.modifiers()),
                              .scrollingDeltaY = event.angleDelta().y() / kWheelStep},
                             &window);
}

std::shared_ptr<NSEvent> pinchEvent(const QNativeGestureEvent& event, QPoint origin, NSWindow& window) {
  if (event.gestureType() != Qt::ZoomNativeGesture) return nullptr;
  const QPointF location = event.position() - origin;
  return NSEvent::mouseEvent({.type = NSEventType::Magnify,
                              .location = {location.x(), location.y()},
                              .magnification = event.value()},
                             &window);
}

}  // namespace vistrel::windows
