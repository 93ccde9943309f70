#include "linux/qt/Palettes.h"

#include "appkit/NSWorkspace.h"

namespace vistrel::qt {

namespace {

struct Colors {
  QRgb window;
  QRgb base;
  QRgb button;
  QRgb text;
  QRgb dimmed;
  QRgb link;
  QRgb accent;
};

constexpr Colors kLight{0xfff2f2f2, 0xffffffff, 0xfff7f7f7, 0xff1c1c1e, 0xff8a8a8e, 0xff1a5fb4, 0xff3584e4};
// Edges, too, which Qt derives from these, are to be told from what is beside them.
constexpr Colors kLightHighContrast{0xffd0d0d0, 0xffffffff, 0xffffffff, 0xff000000,
                                    0xff404040, 0xff00308f, 0xff0b57b0};
constexpr Colors kDarkHighContrast{0xff000000, 0xff5a5a5a, 0xff5a5a5a, 0xffffffff,
                                   0xffd8d8d8, 0xffa8d0ff, 0xff0b57b0};
constexpr Colors kDark{0xff2b2b2d, 0xff424246, 0xff4a4a4e, 0xfff2f2f2, 0xffa8a8ad, 0xff78aeed, 0xff3584e4};

void setDisabled(QPalette& palette, QColor dimmed) {
  for (const auto role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText}) {
    palette.setColor(QPalette::Disabled, role, dimmed);
  }
}

// Qt derives the shades of frames and edges from the button's and the window's color.
QPalette make(const Colors& colors) {
  QPalette palette(QColor(colors.button), QColor(colors.window));
  for (const auto role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    palette.setColor(role, QColor(colors.text));
  }
  palette.setColor(QPalette::Base, QColor(colors.base));
  palette.setColor(QPalette::AlternateBase, QColor(colors.window));
  palette.setColor(QPalette::ToolTipBase, QColor(colors.base));
  palette.setColor(QPalette::PlaceholderText, QColor(colors.dimmed));
  palette.setColor(QPalette::Highlight, QColor(colors.accent));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, QColor(colors.link));
  palette.setColor(QPalette::LinkVisited, QColor(colors.link));
  setDisabled(palette, QColor(colors.dimmed));
  palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(colors.button));
  return palette;
}

bool isContrastHigh() { return NSWorkspace::shared().accessibilityDisplayShouldIncreaseContrast(); }

}  // namespace

QPalette paletteFor(bool isDark, Contrast contrast) {
  if (contrast == Contrast::High) return make(isDark ? kDarkHighContrast : kLightHighContrast);
  return make(isDark ? kDark : kLight);
}

QPalette paletteFor(const NSAppearance& appearance) {
  return paletteFor(appearance.isDark(), isContrastHigh() ? Contrast::High : Contrast::Usual);
}

QColor neutralGlass(const NSAppearance& appearance) {
  return appearance.isDark() ? QColor(0x24, 0x25, 0x28) : QColor(0xd9, 0xda, 0xdd);
}

QColor chromeLine(const NSAppearance& appearance) {
  if (isContrastHigh()) return appearance.isDark() ? Qt::white : Qt::black;
  return appearance.isDark() ? QColor(0x55, 0x57, 0x5c) : QColor(0xb4, 0xb5, 0xb9);
}

}  // namespace vistrel::qt
