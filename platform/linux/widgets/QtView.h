#pragma once

#include <QWidget>
#include <memory>
#include <string>

#include "appkit/NSView.h"

namespace vistrel::widgets {

class Glass;

/// What the native widgets of a view tree report. Called from the main loop.
class ViewClient {
 public:
  virtual ~ViewClient() = default;
  virtual void focusWanted(NSView& view) = 0;
  virtual void clicked(NSView& view) = 0;
};

/// The native widget of one view: at the view's frame, with its layer as background. Subclasses add a
/// control.
class QtView : public QWidget {
 public:
  QtView(NSView& view, ViewClient& client);
  ~QtView() override;

  /// Takes over what the view says now.
  virtual void refresh();
  /// The widget that takes the keyboard focus for the view; null for one that takes none.
  [[nodiscard]] virtual QWidget* control() const { return control_; }
  [[nodiscard]] NSView& view() const { return *view_; }

 protected:
  [[nodiscard]] ViewClient& client() const { return client_; }
  /// Has `content` fill the view.
  void fillWith(QWidget& content);
  /// Reports it when the native focus comes to `control`.
  void setControl(QWidget& control);
  /// What a screen reader calls the view, and what it says that it is for.
  [[nodiscard]] virtual std::string accessibleName() const;
  [[nodiscard]] virtual std::string accessibleHelp() const;

  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void refreshGlass();

  // Kept until the tree is built anew, even if the view leaves it before.
  std::shared_ptr<NSView> view_;
  ViewClient& client_;
  QWidget* content_ = nullptr;
  QWidget* control_ = nullptr;
  Glass* glass_ = nullptr;
};

}  // namespace vistrel::widgets
