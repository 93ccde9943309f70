#pragma once

#include <QPointer>
#include <memory>
#include <string>

#include "linux/widgets/DeclarativeWidgets.h"
#include "linux/widgets/QtView.h"
#include "swiftui/NSHostingView.h"

namespace vistrel::widgets {

/// A declarative view drawn with native widgets. They are made once and follow the view's values; a view of
/// another structure gets new ones. The hosted controls lie over the places that the layout keeps for them.
class QtHostingView final : public QtView {
 public:
  QtHostingView(NSHostingView& hosting, ViewClient& client);
  ~QtHostingView() override;
  void refresh() override;
  /// The one of the controls to which the keyboard came last.
  [[nodiscard]] QWidget* control() const override { return focused_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void build();
  void placeRoot();
  [[nodiscard]] QWidget* controlOf(const NSView& hosted) const;
  static void followInTabOrder(QWidget& control, QWidget& place);
  void placeHosted(const QWidget& place);

  NSHostingView& hosting_;
  std::unique_ptr<DeclarativeWidgets> widgets_;
  std::string structure_;
  QPointer<QWidget> focused_;
};

}  // namespace vistrel::widgets
