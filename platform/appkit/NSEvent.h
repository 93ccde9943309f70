#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/Geometry.h"

namespace vistrel {

class NSWindow;

/// Modifier keys of an event, as a set of bits (the platform's published values).
struct NSEventModifierFlags {
  std::uint64_t rawValue = 0;

  static constexpr std::uint64_t kCapsLock = 1U << 16U;
  static constexpr std::uint64_t kShift = 1U << 17U;
  static constexpr std::uint64_t kControl = 1U << 18U;
  static constexpr std::uint64_t kOption = 1U << 19U;
  static constexpr std::uint64_t kCommand = 1U << 20U;
  static constexpr std::uint64_t kNumericPad = 1U << 21U;
  static constexpr std::uint64_t kHelp = 1U << 22U;
  static constexpr std::uint64_t kFunction = 1U << 23U;
  /// Bits 16 to 31; the lower ones belong to the device.
  static constexpr std::uint64_t kDeviceIndependent = 0xffff0000U;

  [[nodiscard]] bool contains(std::uint64_t bits) const { return (rawValue & bits) == bits; }
  bool operator==(const NSEventModifierFlags&) const = default;
};

enum class NSEventType : int {
  LeftMouseDown = 1,
  LeftMouseUp = 2,
  RightMouseDown = 3,
  RightMouseUp = 4,
  RightMouseDragged = 7,
  MouseEntered = 8,
  MouseExited = 9,
  KeyDown = 10,
  KeyUp = 11,
  FlagsChanged = 12,
  ScrollWheel = 22,
  OtherMouseDown = 25,
  OtherMouseUp = 26,
  Magnify = 30,
};

/// Kinds of events as a set: bit n stands for type n.
using NSEventMask = std::uint64_t;
[[nodiscard]] constexpr NSEventMask maskOf(NSEventType type) {
  return NSEventMask{1} << static_cast<int>(type);
}

/// Keys that type no character, by the platform's published values.
enum class NSSpecialKey : char16_t {
  Backspace = 0x0008,
  Tab = 0x0009,
  CarriageReturn = 0x000d,
  Delete = 0x007f,
  F1 = 0xf704,
  F35 = 0xf726,
  DeleteForward = 0xf728,
};

/// One event. Locations are in the window's content, or on the desktop for an event without a window.
class NSEvent {
 public:
  struct Mouse {
    NSEventType type = NSEventType::LeftMouseDown;
    Point location = {};
    NSEventModifierFlags modifierFlags = {};
    double timestamp = 0;
    int windowNumber = 0;
    int eventNumber = 0;
    int clickCount = 1;
    float pressure = 0;
    double scrollingDeltaY = 0;  ///< steps of a wheel, away from the user
    double magnification = 0;    ///< of a pinch since its last event: 0.1 for a tenth larger
  };
  /// The key code of a key that has no place on the platform's keyboard.
  static constexpr std::uint16_t kNoKeyCode = 0xFFFF;
  struct Key {
    NSEventType type = NSEventType::KeyDown;
    NSEventModifierFlags modifierFlags = {};
    std::uint16_t keyCode = 0;  ///< virtual key code: a position on the keyboard
    bool isARepeat = false;
    std::string characters = {};  ///< what the key types without Control and the like, in lower case, UTF-8
  };

  [[nodiscard]] static std::shared_ptr<NSEvent> mouseEvent(const Mouse& mouse, NSWindow* window = nullptr);
  [[nodiscard]] static std::shared_ptr<NSEvent> keyEvent(const Key& key, NSWindow* window = nullptr);

  [[nodiscard]] NSEventType type() const { return mouse_.type; }
  [[nodiscard]] NSEventModifierFlags modifierFlags() const { return mouse_.modifierFlags; }
  [[nodiscard]] std::uint16_t keyCode() const { return keyCode_; }
  [[nodiscard]] bool isARepeat() const { return isARepeat_; }
  /// Whether the key types that character of ASCII; where the layout has another script there, whether the
  /// character is printed at its place on an ANSI keyboard, which is given.
  [[nodiscard]] bool types(char character, std::uint16_t place) const;
  /// The special key that was pressed; none for a key that types a character.
  [[nodiscard]] std::optional<NSSpecialKey> specialKey() const;
  [[nodiscard]] Point locationInWindow() const { return mouse_.location; }
  [[nodiscard]] double timestamp() const { return mouse_.timestamp; }
  [[nodiscard]] int windowNumber() const { return mouse_.windowNumber; }
  [[nodiscard]] int eventNumber() const { return mouse_.eventNumber; }
  [[nodiscard]] int clickCount() const { return mouse_.clickCount; }
  [[nodiscard]] float pressure() const { return mouse_.pressure; }
  [[nodiscard]] double scrollingDeltaY() const { return mouse_.scrollingDeltaY; }
  [[nodiscard]] double magnification() const { return mouse_.magnification; }
  /// Where the pointer is now, on the desktop.
  [[nodiscard]] static Point mouseLocation();
  [[nodiscard]] NSWindow* window() const { return window_; }
  /// Whether a press means a context menu: by the secondary button, or by the primary one with Control or
  /// Option held.
  [[nodiscard]] bool asksForMenu() const;
  [[nodiscard]] bool isKeyEvent() const {
    return type() == NSEventType::KeyDown || type() == NSEventType::KeyUp;
  }

  /// What watches events before they are dispatched; see `addLocalMonitor`.
  class Monitor;
  /// Answers the event to go on with, or none to swallow it.
  using Handler = std::function<std::shared_ptr<NSEvent>(const std::shared_ptr<NSEvent>&)>;

  /// Hands every event of this program whose type is in `mask` to `handler` before it is dispatched, until
  /// `removeMonitor`. The platform keeps the monitor alive meanwhile. A handler may remove its own monitor.
  static std::shared_ptr<Monitor> addLocalMonitor(NSEventMask mask, Handler handler);
  static void removeMonitor(const std::shared_ptr<Monitor>& monitor);

  /// Runs the monitors over an event; none when one of them swallowed it.
  [[nodiscard]] static std::shared_ptr<NSEvent> filter(std::shared_ptr<NSEvent> event);

 private:
  NSEvent(const Mouse& mouse, NSWindow* window) : mouse_(mouse), window_(window) {}
  Mouse mouse_;
  std::uint16_t keyCode_ = 0;
  bool isARepeat_ = false;
  std::string characters_;
  NSWindow* window_ = nullptr;
};

}  // namespace vistrel
