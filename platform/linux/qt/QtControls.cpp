#include "qt/QtControls.h"

#include <QAbstractButton>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <algorithm>

#include "appkit/NSWindow.h"
#include "qt/Icons.h"
#include "qt/TrayLabel.h"

namespace vistrel::qt {

namespace {

constexpr double kBezelRadius = 5;
constexpr int kGlyphMargin = 5;
constexpr int kCloseButtonSize = 20;
constexpr int kCloseButtonMargin = 8;

// Buttons over a picture have to be seen on any picture.
enum class Touch { None, Hovered, Pressed };

Touch touchOf(const QAbstractButton& button) {
  if (button.isDown()) return Touch::Pressed;
  return button.underMouse() ? Touch::Hovered : Touch::None;
}

QColor bezelColour(bool isDark, Touch touch) {
  const int strength = touch == Touch::None ? 0 : touch == Touch::Hovered ? 1 : 2;
  if (isDark) return QColor(255, 255, 255, 45 * strength);
  const int grey = 250 - 18 * strength;
  return QColor(grey, grey, grey, 225);
}

QColor glyphColour(bool isDark) { return isDark ? QColor(245, 245, 247) : QColor(35, 35, 38); }

}  // namespace

QtTextField::QtTextField(NSTextField& field, QtViewClient& client)
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

QtImageView::QtImageView(NSImageView& imageView, QtViewClient& client)
    : QtView(imageView, client), imageView_(imageView) {}

void QtImageView::paintEvent(QPaintEvent* event) {
  QtView::paintEvent(event);
  if (!imageView_.image()) return;
  const QColor colour = palette().color(QPalette::WindowText);
  QPainter(this).drawPixmap(0, 0, drawn(*imageView_.image(), size(), devicePixelRatioF(), colour));
}

QtPushButton::QtPushButton(NSButton& button, QtViewClient& client)
    : QtView(button, client), button_(button), native_(new QPushButton(this)) {
  fillWith(*native_);
  setControl(*native_);
  connect(native_, &QPushButton::clicked, this, [this] { this->client().clicked(view()); });
}

void QtPushButton::refresh() {
  QtView::refresh();
  native_->setText(labelForQtMenu(QString::fromStdString(button_.title())));
  native_->setEnabled(button_.isEnabled());
  const auto& label = button_.accessibilityLabel();
  native_->setAccessibleName(QString::fromStdString(label.empty() ? button_.title() : label));
}

class QtPopUpButton::Face final : public QAbstractButton {
 public:
  Face(NSPopUpButton& button, QWidget* parent) : QAbstractButton(parent), button_(button) {
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    const bool isDark = button_.effectiveAppearance().isDark();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(bezelColour(isDark, touchOf(*this)));
    painter.drawRoundedRect(rect(), kBezelRadius, kBezelRadius);
    paintGlyph(painter, glyphColour(isDark));
    if (hasFocus() && button_.focusRingType() == NSFocusRingType::Default) paintFocusRing(painter);
  }

 private:
  // As large as the height allows, in the middle.
  void paintGlyph(QPainter& painter, const QColor& colour) const {
    const auto image = faceImage();
    const int side = height() - 2 * kGlyphMargin;
    if (!image || side <= 0) return;
    const QPointF at((width() - side) / 2.0, kGlyphMargin);
    painter.drawPixmap(at, drawn(*image, {side, side}, devicePixelRatioF(), colour));
  }

  void paintFocusRing(QPainter& painter) const {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), kBezelRadius, kBezelRadius);
  }

  [[nodiscard]] std::shared_ptr<NSImage> faceImage() const {
    const auto& menu = button_.menu();
    return menu && !menu->itemArray().empty() ? menu->itemArray().front()->image() : nullptr;
  }

  NSPopUpButton& button_;
};

QtPopUpButton::QtPopUpButton(NSPopUpButton& button, QtViewClient& client)
    : QtView(button, client), face_(new Face(button, this)) {
  fillWith(*face_);
  setControl(*face_);
  // On the press, as menus open; a screen reader's action presses too.
  connect(face_, &QAbstractButton::pressed, this, [this] { this->client().clicked(view()); });
}

void QtPopUpButton::refresh() {
  QtView::refresh();
  face_->setAccessibleName(accessibleName());
  face_->update();
}

class QtCloseButton::Cross final : public QAbstractButton {
 public:
  explicit Cross(QWidget* parent) : QAbstractButton(parent) {
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_Hover);
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    const Touch touch = touchOf(*this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(255, 255, 255, 90), 1));
    painter.setBrush(touch == Touch::None ? QColor(25, 25, 28, 190) : QColor(200, 60, 50));
    painter.drawEllipse(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    painter.setPen(QPen(Qt::white, 1.6, Qt::SolidLine, Qt::RoundCap));
    const QRectF cross = QRectF(rect()).adjusted(6.5, 6.5, -6.5, -6.5);
    painter.drawLine(cross.topLeft(), cross.bottomRight());
    painter.drawLine(cross.topRight(), cross.bottomLeft());
  }
};

QtCloseButton::QtCloseButton(NSButton& button, QtViewClient& client)
    : QtView(button, client), cross_(new Cross(this)) {
  fillWith(*cross_);
  connect(cross_, &QAbstractButton::clicked, this, [this] { this->client().clicked(view()); });
}

// Its view has no frame: a window's own button lies where the desktop puts it.
void QtCloseButton::refresh() {
  QtView::refresh();
  const int right = parentWidget()->width() - kCloseButtonMargin - kCloseButtonSize;
  setGeometry(right, kCloseButtonMargin, kCloseButtonSize, kCloseButtonSize);
  cross_->setAccessibleName(accessibleName());
}

}  // namespace vistrel::qt
