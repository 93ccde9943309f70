#pragma once

#include <QWidget>
#include <utility>
#include <vector>

#include "linux/widgets/PickerWidgets.h"
#include "swiftui/View.h"

class QGridLayout;
class QLabel;

namespace vistrel::widgets {

/// The native widgets for a declarative view and all inside it. They show the values of the view's bindings
/// and write what the user sets.
class DeclarativeWidgets {
 public:
  /// A hosted control and the widget that keeps its place free.
  using HostedPlace = std::pair<QWidget*, NSView*>;

  /// Makes the widgets, inside `parent`.
  DeclarativeWidgets(const swiftui::View& view, QWidget& parent);
  DeclarativeWidgets(const DeclarativeWidgets&) = delete;
  DeclarativeWidgets& operator=(const DeclarativeWidgets&) = delete;

  [[nodiscard]] QWidget& root() const { return *root_; }
  /// Reads every binding again.
  void update() const;
  [[nodiscard]] const std::vector<HostedPlace>& hostedPlaces() const { return hosted_; }
  /// The widgets that can have the keyboard focus.
  [[nodiscard]] const std::vector<QWidget*>& controls() const { return bindings_.controls; }

 private:
  QWidget* make(const swiftui::View& view, QWidget* parent);
  QWidget* makeContent(const swiftui::View& view, QWidget* parent);
  QLabel* makeText(const swiftui::View& view, QWidget* parent);
  QWidget* make(const swiftui::TextContent& text, const swiftui::View& view, QWidget* parent);
  QWidget* make(const swiftui::ImageContent& image, const swiftui::View& view, QWidget* parent);
  QWidget* make(const swiftui::DividerContent& divider, const swiftui::View& view, QWidget* parent);
  QWidget* make(const swiftui::StackContent& stack, const swiftui::View& view, QWidget* parent);
  QWidget* make(const swiftui::FormContent& form, const swiftui::View& view, QWidget* parent);
  QWidget* make(const swiftui::PickerContent& picker, const swiftui::View& view, QWidget* parent);
  QWidget* make(const swiftui::ToggleContent& toggle, const swiftui::View& view, QWidget* parent);
  QWidget* make(const swiftui::LinkContent& link, const swiftui::View& view, QWidget* parent);
  QWidget* make(const swiftui::HostedContent& hosted, const swiftui::View& view, QWidget* parent);

  void addRow(QGridLayout& grid, const swiftui::View& row, QWidget* form);
  void addLabelled(QGridLayout& grid, const swiftui::View& row, const swiftui::View& label, QWidget* control);
  static void addGap(QGridLayout& grid, double points);

  Bindings bindings_;
  std::vector<HostedPlace> hosted_;
  QWidget* root_;
};

/// What the widgets of a view depend on besides its bindings; widgets serve another view of equal structure.
[[nodiscard]] std::string structureOf(const swiftui::View& view);

}  // namespace vistrel::widgets
