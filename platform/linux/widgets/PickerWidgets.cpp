#include "linux/widgets/PickerWidgets.h"

#include <QBoxLayout>
#include <QButtonGroup>
#include <QComboBox>
#include <QRadioButton>
#include <memory>

#include "linux/qt/AccessibleRole.h"
#include "linux/qt/MenuRows.h"
#include "linux/widgets/Segment.h"

namespace vistrel::widgets {

using swiftui::PickerContent;
using swiftui::PickerStyle;
using swiftui::View;

namespace {

constexpr int kButtonGap = 3;

Segment::Place placeOf(std::size_t index, std::size_t count) {
  if (count == 1) return Segment::Place::Only;
  if (index == 0) return Segment::Place::First;
  return index + 1 == count ? Segment::Place::Last : Segment::Place::Middle;
}

std::shared_ptr<NSImage> imageOf(const View& view) {
  const auto* content = std::get_if<swiftui::ImageContent>(&view.content);
  return content ? content->image : nullptr;
}

// A choice among buttons: a row that looks like one control, or a column of radio buttons.
QAbstractButton* makeChoice(const PickerContent& picker, std::size_t index, QWidget* parent) {
  const View& choice = picker.choices[index];
  const QString name = QString::fromStdString(nameOf(choice));
  if (picker.style == PickerStyle::Segmented) {
    auto* segment = new Segment(imageOf(choice), placeOf(index, picker.choices.size()), parent);
    segment->setText(imageOf(choice) ? QString() : name);
    segment->setAccessibleName(name);
    segment->setToolTip(name);
    return segment;
  }
  auto* button = new QRadioButton(parent);
  button->setText(qt::labelForQtMenu(name));
  button->setAccessibleName(name);
  return button;
}

QWidget* makeMenuPicker(const PickerContent& picker, QWidget& parent, Bindings& bindings) {
  auto* box = new QComboBox(&parent);
  box->setAccessibleName(QString::fromStdString(picker.label));
  for (const View& choice : picker.choices)
    box->addItem(QString::fromStdString(choice.text()), QVariant::fromValue(choice.tagValue));
  bindings.controls.push_back(box);
  bindings.updates.emplace_back(
      [box, get = picker.selection.get] { box->setCurrentIndex(box->findData(QVariant::fromValue(get()))); });
  QObject::connect(box, &QComboBox::activated, box, [box, selection = picker.selection](int index) {
    selection.choose(box->itemData(index).value<std::int64_t>());
  });
  return box;
}

QWidget* makeButtonPicker(const PickerContent& picker, QWidget& parent, Bindings& bindings) {
  const bool isRow = picker.style == PickerStyle::Segmented;
  auto* widget = new QWidget(&parent);
  qt::setAccessibleRole(*widget, QAccessible::Grouping);
  auto* layout = new QBoxLayout(isRow ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, widget);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(isRow ? 0 : kButtonGap);
  auto* group = new QButtonGroup(widget);
  for (std::size_t i = 0; i < picker.choices.size(); ++i) {
    QAbstractButton* button = makeChoice(picker, i, widget);
    layout->addWidget(button);
    group->addButton(button, int(picker.choices[i].tagValue));
    bindings.controls.push_back(button);
  }
  bindings.updates.emplace_back([group, get = picker.selection.get] {
    if (auto* chosen = group->button(int(get()))) chosen->setChecked(true);
    // Qt would have Tab go to the first one until one of them has had the focus.
    for (auto* button : group->buttons())
      button->setFocusPolicy(button->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
  });
  // A screen reader toggles without a click.
  QObject::connect(group, &QButtonGroup::idToggled, widget,
                   [selection = picker.selection](int tag, bool isOn) {
                     if (isOn && selection.get() != tag) selection.choose(tag);
                   });
  return widget;
}

}  // namespace

QWidget* makePicker(const PickerContent& picker, QWidget& parent, Bindings& bindings) {
  return picker.style == PickerStyle::Default ? makeMenuPicker(picker, parent, bindings)
                                              : makeButtonPicker(picker, parent, bindings);
}

int firstLineHeight(const QWidget& column) {
  const auto* first = column.findChild<QRadioButton*>();
  return first ? first->sizeHint().height() : column.sizeHint().height();
}

std::string nameOf(const View& view) {
  const auto* content = std::get_if<swiftui::ImageContent>(&view.content);
  return content ? content->label : view.text();
}

}  // namespace vistrel::widgets
