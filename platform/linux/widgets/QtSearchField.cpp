#include "linux/widgets/QtSearchField.h"

#include <QAbstractButton>
#include <QAction>
#include <QLineEdit>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>

#include "foundation/Bundle.h"

namespace vistrel::widgets {

/// A line that shows its centred placeholder while it has the focus too.
class QtSearchField::Line final : public QLineEdit {
 public:
  explicit Line(QWidget* parent) : QLineEdit(parent) {
    setContextMenuPolicy(Qt::NoContextMenu);
    setAcceptDrops(false);
  }

 protected:
  // Without a caret nothing is edited, so nothing is selected either.
  void mouseMoveEvent(QMouseEvent* event) override {
    if (!isReadOnly()) QLineEdit::mouseMoveEvent(event);
  }
  void mouseDoubleClickEvent(QMouseEvent* event) override {
    if (!isReadOnly()) QLineEdit::mouseDoubleClickEvent(event);
  }

  void paintEvent(QPaintEvent* event) override {
    QLineEdit::paintEvent(event);
    if (!hasFocus() || !text().isEmpty() || !alignment().testFlag(Qt::AlignHCenter)) return;
    QStyleOptionFrame option;
    initStyleOption(&option);
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(style()->subElementRect(QStyle::SE_LineEditContents, &option, this), Qt::AlignCenter,
                     placeholderText());
  }
};

QtSearchField::QtSearchField(NSSearchField& field, ViewClient& client)
    : QtView(field, client), field_(field), line_(new Line(this)) {
  const QIcon icon = style()->standardIcon(QStyle::SP_LineEditClearButton);
  clear_ = line_->addAction(icon, QLineEdit::TrailingPosition);
  const QString name = QString::fromStdString(Bundle::main().localizedString("Clear"));
  clear_->setText(name);
  clear_->setToolTip(name);
  line_->setFocusPolicy(field.canBecomeKeyView() ? Qt::StrongFocus : Qt::ClickFocus);
  fillWith(*line_);
  setControl(*line_);
  // On the press: it brings the focus too, and a field that watches events may keep the release for itself.
  const auto* button = line_->findChild<QAbstractButton*>();
  connect(button, &QAbstractButton::pressed, this, [this] { pressClearButton(); });
  connect(line_, &QLineEdit::textEdited, this,
          [this](const QString& text) { field_.userChangedText(text.toStdString()); });
}

void QtSearchField::pressClearButton() {
  const auto* cell = dynamic_cast<const NSSearchFieldCell*>(field_.cell());
  if (!cell) return;
  if (const auto button = cell->cancelButtonCell()) button->performClick(&field_);
}

// A screen reader tells what a press of a key will do now.
std::string QtSearchField::accessibleHelp() const { return field_.placeholderString(); }

void QtSearchField::refresh() {
  QtView::refresh();
  const QString text = QString::fromStdString(field_.stringValue());
  if (line_->text() != text) line_->setText(text);
  line_->setPlaceholderText(QString::fromStdString(field_.placeholderString()));
  line_->setAlignment(field_.alignment() == NSTextAlignment::Center ? Qt::AlignCenter : Qt::AlignVCenter);
  line_->setEnabled(field_.isEnabled());
  const NSTextView* editor = field_.currentEditor();
  line_->setReadOnly(editor && !editor->isCaretVisible());
  clear_->setVisible(field_.showsCancelButton());
}

}  // namespace vistrel::widgets
