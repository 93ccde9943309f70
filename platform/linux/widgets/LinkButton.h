#pragma once

#include <QAbstractButton>

namespace vistrel::widgets {

/// A text that is pressed, drawn as a link.
class LinkButton final : public QAbstractButton {
 public:
  LinkButton(const QString& title, QWidget* parent);
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace vistrel::widgets
