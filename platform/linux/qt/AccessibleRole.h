#pragma once

#include <QAccessible>
#include <QWidget>
#include <string>

namespace vistrel::qt {

/// Says what a widget without a kind of its own is to screen readers, which would take it for a filler.
/// Before the widget is shown.
void setAccessibleRole(QWidget& widget, QAccessible::Role role);

/// What a widget is called and what it is for. Screen readers are told of changes only, and not each time.
void setAccessibleTexts(QWidget& widget, const std::string& name, const std::string& description);
void setAccessibleDescription(QWidget& widget, const std::string& description);

}  // namespace vistrel::qt
