#include "linux/widgets/DeclarativeWidgets.h"

#include <QCheckBox>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <algorithm>

#include "appkit/NSSearchField.h"
#include "appkit/NSWorkspace.h"
#include "linux/qt/AccessibleRole.h"
#include "linux/qt/MenuRows.h"
#include "linux/widgets/LinkButton.h"
#include "linux/widgets/PickerWidgets.h"
#include "linux/widgets/ScaledPicture.h"

namespace vistrel::widgets {

using swiftui::PickerContent;
using swiftui::PickerStyle;
using swiftui::StackContent;
using swiftui::TextContent;
using swiftui::View;

namespace {

constexpr int kFormRowGap = 2;
constexpr int kFormColumnGap = 10;
constexpr int kStackGap = 3;
constexpr int kRowGap = 6;
constexpr int kLabelColumn = 0;
constexpr int kControlColumn = 1;

QString qtText(const std::string& text) { return QString::fromStdString(text); }

double fontScale(swiftui::Font font) {
  switch (font) {
    case swiftui::Font::Headline:
      return 1.2;
    case swiftui::Font::Subheadline:
      return 0.9;
    case swiftui::Font::Caption:
      return 0.85;
    case swiftui::Font::Body:
      break;
  }
  return 1;
}

QFont fontOf(const View& view, QFont base) {
  const double scale = fontScale(view.fontValue);
  if (base.pixelSize() > 0) {
    base.setPixelSize(int(base.pixelSize() * scale));
  } else {
    base.setPointSizeF(base.pointSizeF() * scale);
  }
  const bool isStrong =
      view.fontValue == swiftui::Font::Headline || view.weight == swiftui::FontWeight::Semibold;
  if (isStrong) base.setWeight(QFont::DemiBold);
  return base;
}

// Where a line begins in the program's language, whatever the language of the text.
Qt::Alignment leadingIn(const QWidget& widget) {
  const bool isMirrored = widget.layoutDirection() == Qt::RightToLeft;
  return (isMirrored ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute;
}

}  // namespace

std::string structureOf(const View& view) {
  std::string structure;
  view.walk([&](const View& part) {
    structure += std::to_string(part.content.index()) + ":" + nameOf(part) + ":" +
                 std::to_string(part.children().size()) + ";";
    if (const auto* picker = std::get_if<PickerContent>(&part.content)) structure += picker->label;
    if (const auto* link = std::get_if<swiftui::LinkContent>(&part.content)) structure += link->title;
  });
  return structure;
}

DeclarativeWidgets::DeclarativeWidgets(const View& view, QWidget& parent) : root_(make(view, &parent)) {}

void DeclarativeWidgets::update() const {
  for (const auto& refresh : bindings_.updates) refresh();
}

QWidget* DeclarativeWidgets::make(const View& view, QWidget* parent) {
  const auto& padding = view.paddingValue;
  QWidget* content = makeContent(view, parent);
  const int frameHeight = int(view.frameValue.height.value_or(0));
  content->setMinimumHeight(std::max(content->minimumHeight(), frameHeight));
  if (view.frameValue.width) content->setFixedWidth(int(*view.frameValue.width));
  if (padding == swiftui::EdgeInsets{}) return content;
  auto* padded = new QWidget(parent);
  auto* layout = new QHBoxLayout(padded);
  layout->setContentsMargins(int(padding.leading), std::max(0, int(padding.top)), int(padding.trailing),
                             int(padding.bottom));
  layout->addWidget(content);
  return padded;
}

// One `make` for each kind of content; a kind without one does not compile.
QWidget* DeclarativeWidgets::makeContent(const View& view, QWidget* parent) {
  const std::size_t first = bindings_.controls.size();
  auto* made = std::visit([&](const auto& content) { return make(content, view, parent); }, view.content);
  if (view.hint.empty()) return made;
  for (std::size_t i = first; i < bindings_.controls.size(); ++i)
    bindings_.controls[i]->setAccessibleDescription(qtText(view.hint));
  return made;
}

QWidget* DeclarativeWidgets::make(const TextContent& /*text*/, const View& view, QWidget* parent) {
  return makeText(view, parent);
}

QWidget* DeclarativeWidgets::make(const swiftui::ImageContent& image, const View& /*view*/, QWidget* parent) {
  auto* picture = new ScaledPicture(image.image, parent);
  qt::setAccessibleRole(*picture, QAccessible::Graphic);
  picture->setAccessibleName(qtText(image.label));
  return picture;
}

QWidget* DeclarativeWidgets::make(const swiftui::DividerContent& /*divider*/, const View& /*view*/,
                                  QWidget* parent) {
  auto* line = new QFrame(parent);
  line->setFrameStyle(static_cast<int>(QFrame::HLine) | static_cast<int>(QFrame::Sunken));
  return line;
}

QLabel* DeclarativeWidgets::makeText(const View& view, QWidget* parent) {
  auto* label = new QLabel(qtText(view.text()), parent);
  label->setTextFormat(Qt::PlainText);
  label->setFont(fontOf(view, label->font()));
  const bool isCentred = view.textAlignment == swiftui::TextAlignment::Center;
  const auto vertical =
      view.frameValue.alignment == swiftui::Alignment::Top ? Qt::AlignTop : Qt::AlignVCenter;
  label->setAlignment((isCentred ? Qt::Alignment(Qt::AlignHCenter) : leadingIn(*label)) | vertical);
  if (view.frameValue.width) {
    // Text that the frame cannot hold makes it higher.
    label->setWordWrap(true);
    label->setMinimumHeight(label->heightForWidth(int(*view.frameValue.width)));
  }
  if (view.opacityValue < 1) {
    bindings_.updates.emplace_back([label, opacity = view.opacityValue] {
      QPalette palette = label->parentWidget()->palette();
      QColor color = palette.color(QPalette::WindowText);
      const bool isPale = !NSWorkspace::shared().accessibilityDisplayShouldIncreaseContrast();
      if (isPale) color.setAlphaF(static_cast<float>(opacity));
      palette.setColor(QPalette::WindowText, color);
      label->setPalette(palette);
    });
  }
  return label;
}

QWidget* DeclarativeWidgets::make(const StackContent& stack, const View& /*view*/, QWidget* parent) {
  auto* widget = new QWidget(parent);
  const bool isRow = stack.axis == swiftui::Axis::Horizontal;
  auto* layout = new QBoxLayout(isRow ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, widget);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(isRow ? kRowGap : kStackGap);
  layout->addStretch();
  for (const View& child : stack.children) {
    QWidget* made = make(child, widget);
    const bool isText = std::holds_alternative<TextContent>(child.content);
    const bool isWide = !isRow && !isText && !child.frameValue.width;
    layout->addWidget(made, 0, isRow ? Qt::AlignVCenter : isWide ? Qt::Alignment() : Qt::AlignHCenter);
  }
  layout->addStretch();
  return widget;
}

QWidget* DeclarativeWidgets::make(const swiftui::FormContent& form, const View& /*view*/, QWidget* parent) {
  auto* widget = new QWidget(parent);
  auto* grid = new QGridLayout(widget);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setHorizontalSpacing(kFormColumnGap);
  grid->setVerticalSpacing(kFormRowGap);
  grid->setColumnStretch(kControlColumn, 1);
  for (const View& row : form.rows) addRow(*grid, row, widget);
  return widget;
}

void DeclarativeWidgets::addGap(QGridLayout& grid, double points) {
  if (points > 0) grid.addItem(new QSpacerItem(0, int(points)), grid.rowCount(), kControlColumn);
}

// A row's leading padding and offset move it to the control column of its platform. Here that column is one
// of the grid's, so both are ignored.
void DeclarativeWidgets::addRow(QGridLayout& grid, const View& row, QWidget* form) {
  if (const auto* picker = std::get_if<PickerContent>(&row.content)) {
    addLabelled(grid, row, swiftui::Text(picker->label), makeContent(row, form));
    return;
  }
  const auto* stack = std::get_if<StackContent>(&row.content);
  if (stack && stack->axis == swiftui::Axis::Vertical) {
    for (const View& inner : stack->children) addRow(grid, inner, form);
    return;
  }
  if (stack && stack->children.size() == 2) {
    addLabelled(grid, row, stack->children[0], make(stack->children[1], form));
    return;
  }
  QWidget* content = makeContent(row, form);
  if (auto* label = qobject_cast<QLabel*>(content)) label->setWordWrap(true);
  const bool isDivider = std::holds_alternative<swiftui::DividerContent>(row.content);
  addGap(grid, row.paddingValue.top);
  const int line = grid.rowCount();
  if (isDivider) {
    grid.addWidget(content, line, kLabelColumn, 1, 2);
  } else {
    const bool isText = std::holds_alternative<TextContent>(row.content);
    grid.addWidget(content, line, kControlColumn, isText ? Qt::Alignment() : Qt::AlignLeft);
  }
  addGap(grid, row.paddingValue.bottom);
}

void DeclarativeWidgets::addLabelled(QGridLayout& grid, const View& row, const View& label,
                                     QWidget* control) {
  QLabel* text = makeText(label, grid.parentWidget());
  text->setBuddy(control);
  if (control->accessibleName().isEmpty()) control->setAccessibleName(text->text());
  if (row.frameValue.width) control->setMinimumWidth(int(*row.frameValue.width));
  if (row.frameValue.height) control->setMinimumHeight(int(*row.frameValue.height));
  // A column of buttons is named beside its first line.
  const auto* picker = std::get_if<PickerContent>(&row.content);
  const bool isColumn = picker && picker->style == PickerStyle::RadioGroup;
  if (isColumn) text->setFixedHeight(firstLineHeight(*control));
  addGap(grid, row.paddingValue.top);
  const int line = grid.rowCount();
  grid.addWidget(text, line, kLabelColumn, Qt::AlignRight | (isColumn ? Qt::AlignTop : Qt::AlignVCenter));
  grid.addWidget(control, line, kControlColumn, Qt::AlignLeft | Qt::AlignVCenter);
  // Text that follows the buttons is drawn up to them.
  if (!isColumn) addGap(grid, row.paddingValue.bottom);
}

QWidget* DeclarativeWidgets::make(const PickerContent& picker, const View& /*view*/, QWidget* parent) {
  return makePicker(picker, *parent, bindings_);
}

QWidget* DeclarativeWidgets::make(const swiftui::ToggleContent& toggle, const View& /*view*/,
                                  QWidget* parent) {
  const QString name = toggle.label.empty() ? QString() : qtText(nameOf(toggle.label.front()));
  auto* box = new QCheckBox(qt::labelForQtMenu(name), parent);
  box->setAccessibleName(name);
  bindings_.controls.push_back(box);
  bindings_.updates.emplace_back([box, get = toggle.isOn.get] { box->setChecked(get()); });
  // A screen reader toggles without a click.
  QObject::connect(box, &QCheckBox::toggled, box, [isOn = toggle.isOn](bool isChecked) {
    if (isOn.get() != isChecked) isOn.set(isChecked);
  });
  return box;
}

QWidget* DeclarativeWidgets::make(const swiftui::LinkContent& link, const View& /*view*/, QWidget* parent) {
  auto* button = new LinkButton(qtText(link.title), parent);
  bindings_.controls.push_back(button);
  QObject::connect(button, &LinkButton::clicked, button, [action = link.action] { action(); });
  return button;
}

QWidget* DeclarativeWidgets::make(const swiftui::HostedContent& hosted, const View& /*view*/,
                                  QWidget* parent) {
  auto* place = new QWidget(parent);
  const Size wanted = hosted.view->intrinsicContentSize();
  // As high as a line of the desktop's own, and wide enough for what the field says while it is empty.
  const auto* field = dynamic_cast<const NSSearchField*>(hosted.view.get());
  const QLineEdit line;
  const int lineHeight = line.sizeHint().height();
  const QString hint = field ? qtText(field->placeholderString()) : QString();
  const int hintWidth = parent->fontMetrics().horizontalAdvance(hint) + 2 * lineHeight;
  place->setMinimumSize(std::max(int(wanted.width), hintWidth), std::max(int(wanted.height), lineHeight));
  hosted_.emplace_back(place, hosted.view.get());
  return place;
}

}  // namespace vistrel::widgets
