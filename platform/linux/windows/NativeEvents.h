#pragma once

#include <QKeyEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QWheelEvent>
#include <memory>

#include "appkit/NSEvent.h"

namespace vistrel::windows {

[[nodiscard]] NSEventModifierFlags flagsOf(Qt::KeyboardModifiers modifiers);

/// The event that a key makes; null for a key that has no place on the keyboard.
[[nodiscard]] std::shared_ptr<NSEvent> keyEvent(const QKeyEvent& event, NSWindow& window);

/// The event that a button makes, with its location in the content that begins at `origin`.
[[nodiscard]] std::shared_ptr<NSEvent> buttonEvent(const QMouseEvent& event, QPoint origin, NSWindow& window);
[[nodiscard]] std::shared_ptr<NSEvent> wheelEvent(const QWheelEvent& event, QPoint origin, NSWindow& window);
/// The event of a touch pad's pinch; null for any other gesture.
[[nodiscard]] std::shared_ptr<NSEvent> pinchEvent(const QNativeGestureEvent& event, QPoint origin,
                                                  NSWindow& window);

}  // namespace vistrel::windows
