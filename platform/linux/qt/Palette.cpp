#include "qt/Palette.h"

#include <QGuiApplication>

namespace vistrel::qt {

namespace {

constexpr int kMiddleLightness = 128;

struct Colours {
  QColor window;
  QColor base;
  QColor button;
  QColor text;
  QColor faint;
  QColor highlight;
};

Colours lightColours() {
  return {QColor(0xf4, 0xf4, 0xf5), QColor(0xff, 0xff, 0xff), QColor(0xe9, 0xe9, 0xeb),
          QColor(0x1d, 0x1d, 0x20), QColor(0x8a, 0x8a, 0x90), QColor(0x2f, 0x6f, 0xd0)};
}

Colours darkColours() {
  return {QColor(0x2b, 0x2c, 0x2f), QColor(0x1f, 0x20, 0x22), QColor(0x3a, 0x3b, 0x3f),
          QColor(0xf0, 0xf0, 0xf2), QColor(0x8e, 0x8f, 0x96), QColor(0x3b, 0x7d, 0xdd)};
}

QPalette paletteOf(const Colours& c) {
  QPalette palette(c.text, c.button, c.base, c.button.darker(150), c.button.darker(120), c.text, Qt::white,
                   c.base, c.window);
  palette.setColor(QPalette::Highlight, c.highlight);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::PlaceholderText, c.faint);
  palette.setColor(QPalette::ToolTipBase, c.window);
  palette.setColor(QPalette::ToolTipText, c.text);
  palette.setColor(QPalette::Link, c.highlight);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, c.faint);
  }
  return palette;
}

bool isDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < kMiddleLightness;
}

}  // namespace

QPalette paletteFor(const NSAppearance& appearance) {
  const QPalette desktop = QGuiApplication::palette();
  if (isDark(desktop) == appearance.isDark()) return desktop;
  return paletteOf(appearance.isDark() ? darkColours() : lightColours());
}

QColor neutralGlass(const NSAppearance& appearance) {
  return appearance.isDark() ? QColor(0x24, 0x25, 0x28) : QColor(0xd9, 0xda, 0xdd);
}

QColor chromeLine(const NSAppearance& appearance) {
  return appearance.isDark() ? QColor(0x55, 0x57, 0x5c) : QColor(0xb4, 0xb5, 0xb9);
}

}  // namespace vistrel::qt
