#include "linux/widgets/DeclarativeWidgets.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QRadioButton>
#include <algorithm>

#include "appkit/NSSearchField.h"
#include "linux/qt/Icons.h"
#include "linux/widgets/LinkButton.h"
#include "linux/widgets/Segment.h"

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
constexpr int kLargestPicture = 96;
constexpr int kSmallestPicture = 32;
constexpr int kLabelColumn = 0;
constexpr int kControlColumn = 1;

// An ampersand would name a key.
QString buttonText(QString text) { return text.replace('&', "&&"); }

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

/// A picture that gives way where the window is short of room.
class Picture final : public QWidget {
 public:
  Picture(std::shared_ptr<NSImage> image, QWidget* parent) : QWidget(parent), image_(std::move(image)) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    setMaximumHeight(kLargestPicture);
  }
  [[nodiscard]] QSize sizeHint() const override { return {kLargestPicture, kLargestPicture}; }
  [[nodiscard]] QSize minimumSizeHint() const override { return {kSmallestPicture, kSmallestPicture}; }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    if (!image_) return;
    const int side = std::min(width(), height());
    const QPointF at((width() - side) / 2.0, (height() - side) / 2.0);
    const QColor color = palette().color(QPalette::WindowText);
    QPainter(this).drawPixmap(at, qt::drawn(*image_, {side, side}, devicePixelRatioF(), color));
  }

 private:
  std::shared_ptr<NSImage> image_;
};

Segment::Place placeOf(std::size_t index, std::size_t count) {
  if (count == 1) return Segment::Place::Only;
  if (index == 0) return Segment::Place::First;
  return index + 1 == count ? Segment::Place::Last : Segment::Place::Middle;
}

std::shared_ptr<NSImage> imageOf(const View& view) {
  const auto* content = std::get_if<swiftui::ImageContent>(&view.content);
  return content ? content->image : nullptr;
}

std::string nameOf(const View& view) {
  const auto* content = std::get_if<swiftui::ImageContent>(&view.content);
  return content ? content->label : view.text();
}

// A choice among buttons: a row that looks like one control, or a column of radio buttons.
QAbstractButton* makeChoice(const PickerContent& picker, std::size_t index, QWidget* parent) {
  const View& choice = picker.choices[index];
  const QString name = qtText(nameOf(choice));
  if (picker.style == PickerStyle::Segmented) {
    auto* segment = new Segment(imageOf(choice), placeOf(index, picker.choices.size()), parent);
    segment->setText(imageOf(choice) ? QString() : name);
    segment->setAccessibleName(name);
    segment->setToolTip(name);
    return segment;
  }
  auto* button = new QRadioButton(parent);
  button->setText(buttonText(name));
  button->setAccessibleName(name);
  return button;
}

// Where a line begins in the program's language, whatever the language of the text.
Qt::Alignment leadingIn(const QWidget& widget) {
  const bool isMirrored = widget.layoutDirection() == Qt::RightToLeft;
  return (isMirrored ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute;
}

int firstLineHeight(const QWidget& column) {
  const auto* first = column.findChild<QRadioButton*>();
  return first ? first->sizeHint().height() : column.sizeHint().height();
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
  for (const auto& refresh : updates_) refresh();
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

QWidget* DeclarativeWidgets::makeContent(const View& view, QWidget* parent) {
  if (std::holds_alternative<TextContent>(view.content)) return makeText(view, parent);
  if (const auto* stack = std::get_if<StackContent>(&view.content)) return makeStack(*stack, parent);
  if (const auto* form = std::get_if<swiftui::FormContent>(&view.content)) return makeForm(*form, parent);
  if (const auto* picker = std::get_if<PickerContent>(&view.content)) return makePicker(*picker, parent);
  if (const auto* toggle = std::get_if<swiftui::ToggleContent>(&view.content))
    return makeToggle(*toggle, parent);
  if (const auto* link = std::get_if<swiftui::LinkContent>(&view.content)) return makeLink(*link, parent);
  if (const auto* hosted = std::get_if<swiftui::HostedContent>(&view.content))
    return makeHosted(*hosted, parent);
  if (const auto* image = std::get_if<swiftui::ImageContent>(&view.content)) {
    auto* picture = new Picture(image->image, parent);
    picture->setAccessibleName(qtText(image->label));
    return picture;
  }
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
    updates_.emplace_back([label, opacity = view.opacityValue] {
      QPalette palette = label->parentWidget()->palette();
      QColor color = palette.color(QPalette::WindowText);
      color.setAlphaF(static_cast<float>(opacity));
      palette.setColor(QPalette::WindowText, color);
      label->setPalette(palette);
    });
  }
  return label;
}

QWidget* DeclarativeWidgets::makeStack(const StackContent& stack, QWidget* parent) {
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

QWidget* DeclarativeWidgets::makeForm(const swiftui::FormContent& form, QWidget* parent) {
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

// Leading distances and offsets of rows are means to stand in the control column; here the column is one.
void DeclarativeWidgets::addRow(QGridLayout& grid, const View& row, QWidget* form) {
  if (const auto* picker = std::get_if<PickerContent>(&row.content)) {
    addLabelled(grid, row, swiftui::Text(picker->label), makePicker(*picker, form));
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

QWidget* DeclarativeWidgets::makePicker(const PickerContent& picker, QWidget* parent) {
  return picker.style == PickerStyle::Default ? makeMenuPicker(picker, parent)
                                              : makeButtonPicker(picker, parent);
}

QWidget* DeclarativeWidgets::makeMenuPicker(const PickerContent& picker, QWidget* parent) {
  auto* box = new QComboBox(parent);
  box->setAccessibleName(qtText(picker.label));
  for (const View& choice : picker.choices)
    box->addItem(qtText(choice.text()), QVariant::fromValue(choice.tagValue));
  controls_.push_back(box);
  updates_.emplace_back(
      [box, get = picker.selection.get] { box->setCurrentIndex(box->findData(QVariant::fromValue(get()))); });
  QObject::connect(box, &QComboBox::activated, box, [box, selection = picker.selection](int index) {
    selection.choose(box->itemData(index).value<std::int64_t>());
  });
  return box;
}

QWidget* DeclarativeWidgets::makeButtonPicker(const PickerContent& picker, QWidget* parent) {
  const bool isRow = picker.style == PickerStyle::Segmented;
  auto* widget = new QWidget(parent);
  auto* layout = new QBoxLayout(isRow ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, widget);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(isRow ? 0 : kStackGap);
  auto* group = new QButtonGroup(widget);
  for (std::size_t i = 0; i < picker.choices.size(); ++i) {
    QAbstractButton* button = makeChoice(picker, i, widget);
    layout->addWidget(button);
    group->addButton(button, int(picker.choices[i].tagValue));
    controls_.push_back(button);
  }
  updates_.emplace_back([group, get = picker.selection.get] {
    if (auto* chosen = group->button(int(get()))) chosen->setChecked(true);
  });
  QObject::connect(group, &QButtonGroup::idClicked, widget,
                   [selection = picker.selection](int tag) { selection.choose(tag); });
  return widget;
}

QWidget* DeclarativeWidgets::makeToggle(const swiftui::ToggleContent& toggle, QWidget* parent) {
  const QString name = toggle.label.empty() ? QString() : qtText(nameOf(toggle.label.front()));
  auto* box = new QCheckBox(buttonText(name), parent);
  box->setAccessibleName(name);
  controls_.push_back(box);
  updates_.emplace_back([box, get = toggle.isOn.get] { box->setChecked(get()); });
  QObject::connect(box, &QCheckBox::clicked, box, toggle.isOn.set);
  return box;
}

QWidget* DeclarativeWidgets::makeLink(const swiftui::LinkContent& link, QWidget* parent) {
  auto* button = new LinkButton(qtText(link.title), parent);
  controls_.push_back(button);
  QObject::connect(button, &LinkButton::clicked, button, [action = link.action] { action(); });
  return button;
}

QWidget* DeclarativeWidgets::makeHosted(const swiftui::HostedContent& hosted, QWidget* parent) {
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
