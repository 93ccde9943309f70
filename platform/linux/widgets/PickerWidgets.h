#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "swiftui/View.h"

namespace vistrel::widgets {

/// What the widgets of a declarative view leave to whoever shows them.
struct Bindings {
  std::vector<std::function<void()>> updates;  ///< each reads a binding again
  std::vector<QWidget*> controls;              ///< what can have the keyboard focus
};

/// A choice of one from several: a combo box, a row of segments or a column of radio buttons.
[[nodiscard]] QWidget* makePicker(const swiftui::PickerContent& picker, QWidget& parent, Bindings& bindings);

/// How high the first of a column's buttons is.
[[nodiscard]] int firstLineHeight(const QWidget& column);

/// What a choice or a label is called: an image's label, else the text.
[[nodiscard]] std::string nameOf(const swiftui::View& view);

}  // namespace vistrel::widgets
