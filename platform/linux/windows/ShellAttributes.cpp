#include "linux/windows/ShellAttributes.h"

#include <utility>

#include "linux/qt/Geometry.h"
#include "linux/qt/Icons.h"
#include "linux/qt/Palettes.h"
#include "linux/windows/PopoverShape.h"

namespace vistrel::windows {

namespace {

// An ordinary window can be closed and moved; nothing of ours gains from another size or from being
// minimised.
constexpr Qt::WindowFlags kTitledFlags = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                         Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
constexpr Qt::WindowFlags kChrome =
    Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint;
constexpr Qt::WindowFlags kPopoverFlags = Qt::Tool | kChrome;
constexpr Qt::WindowFlags kDetachedFlags = Qt::Window | kChrome;

}  // namespace

Rect ShellAttributes::contentOnDesktop() const {
  return qt::fromQt(shell_.geometry().marginsRemoved(margins_));
}

void ShellAttributes::applyFlags() {
  shell_.setAttribute(Qt::WA_TranslucentBackground, hasChrome() && x11_.areWindowsBlended());
  shell_.setWindowFlags(hasChrome() ? kPopoverFlags : kTitledFlags);
}

void ShellAttributes::makeRoom() {
  margins_ = hasChrome() ? PopoverShape::margins(window_.tip()) : QMargins();
}

void ShellAttributes::applyFrame() {
  const QRect content = qt::toQt(window_.frame());
  const QRect outer = content.marginsAdded(margins_);
  if (outer.isEmpty()) return;
  if (shell_.geometry() != outer) {
    shell_.setFixedSize(outer.size());
    shell_.setGeometry(outer);
  }
  shell_.content().setGeometry(QRect(QPoint(margins_.left(), margins_.top()), content.size()));
}

bool ShellAttributes::applyColors() {
  const QPalette palette = qt::paletteFor(window_.effectiveAppearance());
  if (shell_.testAttribute(Qt::WA_SetPalette) && shell_.palette() == palette) return false;
  shell_.setPalette(palette);
  return true;
}

void ShellAttributes::applyBeforeShowing() {
  shell_.winId();
  applyChrome();
  applyKind();
}

void ShellAttributes::applyWhileShown() {
  const bool isOtherKind = std::exchange(shownKind_, window_.kind()) != window_.kind();
  if (!shell_.isVisible()) return;
  applyChrome();
  if (isOtherKind) applyKind();
}

void ShellAttributes::applyChrome() {
  if (!hasChrome()) return;
  const auto tip = window_.kind() == NSWindowKind::Popover ? window_.tip() : std::nullopt;
  const bool isBlended = shell_.testAttribute(Qt::WA_TranslucentBackground);
  const PopoverShape shape(shell_.content().geometry(), tip, shell_.geometry().topLeft(),
                           isBlended ? PopoverShape::Edge::Painted : PopoverShape::Edge::Cut);
  shell_.setChrome(shape.outline(), qt::chromeLine(window_.effectiveAppearance()));
  const QColor glass = qt::neutralGlass(window_.effectiveAppearance());
  if (!isBlended) x11_.setShape(*shell_.windowHandle(), shape.region(shell_.devicePixelRatioF()));
  x11_.setBackground(*shell_.windowHandle(), isBlended ? Qt::transparent : glass);
}

// The flags of the native window change in place. QWidget::setWindowFlags would hide the window first, and
// the picture would flicker.
void ShellAttributes::applyKind() {
  QWindow& handle = *shell_.windowHandle();
  const bool isAccessory = window_.kind() == NSWindowKind::Popover;
  // Lists of windows show it where no desktop entry is installed. The popover, in no list, does not wait for
  // it.
  if (!isAccessory) handle.setIcon(qt::applicationIcon());
  if (hasChrome()) handle.setFlags(isAccessory ? kPopoverFlags : kDetachedFlags);
  x11_.setListed(handle, isAccessory ? X11Windows::ListedAs::Accessory : X11Windows::ListedAs::Window);
}

}  // namespace vistrel::windows
