#include "linux/widgets/QtControls.h"

#include <QAbstractButton>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <algorithm>

#include "appkit/NSWindow.h"
#include "linux/qt/Icons.h"
#include "linux/qt/MenuRows.h"
#include "linux/widgets/MenuButton.h"

namespace vistrel::widgets {

namespace {

constexpr int kCloseButtonSize = 20;
constexpr int kCloseButtonMargin = 8;

}  // namespace

QtTextField::QtTextField(NSTextField& field, ViewClient& client)
    : QtView(field, client), field_(field), label_(new QLabel(this)) {
  label_->setTextFormat(Qt::PlainText);
  label_->setWordWrap(true);
  label_->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
  fillWith(*label_);
}

void QtTextField::refresh() {
  QtView::refresh();
  label_->setText(QString::fromStdString(field_.stringValue()));
}

QtImageView::QtImageView(NSImageView& imageView, ViewClient& client)
    : QtView(imageView, client), imageView_(imageView) {}

void QtImageView::paintEvent(QPaintEvent* event) {
  QtView::paintEvent(event);
  if (!imageView_.image()) return;
  const QColor color = palette().color(QPalette::WindowText);
  QPainter(this).drawPixmap(0, 0, qt::drawn(*imageView_.image(), size(), devicePixelRatioF(), color));
}

QtPushButton::QtPushButton(NSButton& button, ViewClient& client)
    : QtView(button, client), button_(button), native_(new QPushButton(this)) {
  fillWith(*native_);
  setControl(*native_);
  connect(native_, &QPushButton::clicked, this, [this] { this->client().clicked(view()); });
}

void QtPushButton::refresh() {
  QtView::refresh();
  native_->setText(qt::labelForQtMenu(QString::fromStdString(button_.title())));
  native_->setEnabled(button_.isEnabled());
}

std::string QtPushButton::accessibleName() const {
  return button_.accessibilityLabel().empty() ? button_.title() : button_.accessibilityLabel();
}

QtPopUpButton::QtPopUpButton(NSPopUpButton& button, ViewClient& client)
    : QtView(button, client), face_(new MenuButton(button, this)) {
  fillWith(*face_);
  setControl(*face_);
  // On the press, as menus open; a screen reader's action presses too.
  connect(face_, &QAbstractButton::pressed, this, [this] { this->client().clicked(view()); });
}

void QtPopUpButton::refresh() {
  QtView::refresh();
  face_->update();
}

class CloseButton::Cross final : public QAbstractButton {
 public:
  explicit Cross(QWidget* parent) : QAbstractButton(parent) {
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_Hover);
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(255, 255, 255, 90), 1));
    painter.setBrush(underMouse() ? QColor(200, 60, 50) : QColor(25, 25, 28, 190));
    painter.drawEllipse(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    painter.setPen(QPen(Qt::white, 1.6, Qt::SolidLine, Qt::RoundCap));
    const QRectF cross = QRectF(rect()).adjusted(6.5, 6.5, -6.5, -6.5);
    painter.drawLine(cross.topLeft(), cross.bottomRight());
    painter.drawLine(cross.topRight(), cross.bottomLeft());
  }
};

CloseButton::CloseButton(NSButton& button, ViewClient& client)
    : QtView(button, client), cross_(new Cross(this)) {
  fillWith(*cross_);
  setControl(*cross_);
  connect(cross_, &QAbstractButton::clicked, this, [this] { this->client().clicked(view()); });
}

// Its view has no frame: a window's own button lies where the desktop puts it.
void CloseButton::refresh() {
  QtView::refresh();
  const int right = parentWidget()->width() - kCloseButtonMargin - kCloseButtonSize;
  setGeometry(right, kCloseButtonMargin, kCloseButtonSize, kCloseButtonSize);
}

}  // namespace vistrel::widgets
