#include "linux/widgets/MenuButton.h"

#include <QAccessibleWidget>
#include <QMenu>
#include <QPainter>

#include "appkit/NSWorkspace.h"

namespace vistrel::widgets {

namespace {

constexpr double kBezelRadius = 5;
constexpr int kGlyphMargin = 5;

// Qt's own idea of a button knows no menu unless the button opens it by itself.
class MenuButtonAccessible final : public QAccessibleWidget {
 public:
  explicit MenuButtonAccessible(MenuButton& button)
      : QAccessibleWidget(&button, QAccessible::ButtonMenu), button_(button) {}

  int childCount() const override { return openMenu() ? 1 : 0; }
  QAccessibleInterface* child(int index) const override {
    QMenu* menu = index == 0 ? openMenu() : nullptr;
    return menu ? QAccessible::queryAccessibleInterface(menu) : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    return child && child->object() == openMenu() ? 0 : -1;
  }
  QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
  void doAction(const QString& action) override {
    if (action != pressAction()) return QAccessibleWidget::doAction(action);
    button_.click();
  }

 private:
  QMenu* openMenu() const {
    for (QObject* child : button_.children()) {
      auto* menu = qobject_cast<QMenu*>(child);
      if (menu && menu->isVisible()) return menu;
    }
    return nullptr;
  }

  MenuButton& button_;
};

QAccessibleInterface* makeAccessible(const QString& /*className*/, QObject* object) {
  auto* button = dynamic_cast<MenuButton*>(object);
  return button ? new MenuButtonAccessible(*button) : nullptr;
}

QColor bezelColor(bool isDark, const QAbstractButton& button) {
  if (NSWorkspace::shared().accessibilityDisplayShouldIncreaseContrast())
    return isDark ? Qt::black : Qt::white;
  const int strength = button.isDown() ? 2 : button.underMouse() ? 1 : 0;
  if (isDark) return QColor(255, 255, 255, 45 * strength);
  const int grey = 250 - 18 * strength;
  return QColor(grey, grey, grey, 225);
}

QColor glyphColor(bool isDark) { return isDark ? QColor(245, 245, 247) : QColor(35, 35, 38); }

}  // namespace

MenuButton::MenuButton(NSPopUpButton& button, QWidget* parent) : QAbstractButton(parent), button_(button) {
  QAccessible::installFactory(makeAccessible);  // once, however often it is asked for
  setFocusPolicy(Qt::TabFocus);
  setAttribute(Qt::WA_Hover);
}

void MenuButton::paintEvent(QPaintEvent* /*event*/) {
  const bool isDark = button_.effectiveAppearance().isDark();
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(bezelColor(isDark, *this));
  painter.drawRoundedRect(rect(), kBezelRadius, kBezelRadius);
  paintGlyph(painter, glyphColor(isDark));
  if (hasFocus() && button_.focusRingType() == NSFocusRingType::Default) paintFocusRing(painter);
}

// As large as the height allows, in the middle.
void MenuButton::paintGlyph(QPainter& painter, const QColor& color) {
  const auto image = faceImage();
  const int side = height() - 2 * kGlyphMargin;
  if (!image || side <= 0) return;
  const QPointF at((width() - side) / 2.0, kGlyphMargin);
  painter.drawPixmap(at, glyph_.pixmap(*image, {side, side}, devicePixelRatioF(), color));
}

void MenuButton::paintFocusRing(QPainter& painter) const {
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
  painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), kBezelRadius, kBezelRadius);
}

std::shared_ptr<NSImage> MenuButton::faceImage() const {
  const auto& menu = button_.menu();
  return menu && !menu->itemArray().empty() ? menu->itemArray().front()->image() : nullptr;
}

}  // namespace vistrel::widgets
