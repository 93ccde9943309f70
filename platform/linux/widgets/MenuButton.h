#pragma once

#include <QAbstractButton>
#include <memory>

#include "appkit/NSPopUpButton.h"
#include "linux/qt/Icons.h"

namespace vistrel::widgets {

/// The face of a pop-up button, drawn to be seen on any picture. Its menu, while it is open, is a child of
/// it, for screen readers too.
class MenuButton final : public QAbstractButton {
 public:
  MenuButton(NSPopUpButton& button, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void paintGlyph(QPainter& painter, const QColor& color);
  void paintFocusRing(QPainter& painter) const;
  [[nodiscard]] std::shared_ptr<NSImage> faceImage() const;

  NSPopUpButton& button_;
  qt::DrawnIcon glyph_;
};

}  // namespace vistrel::widgets
