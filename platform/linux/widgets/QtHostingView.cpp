#include "linux/widgets/QtHostingView.h"

#include <QEvent>
#include <algorithm>

#include "linux/qt/Geometry.h"

namespace vistrel::widgets {

QtHostingView::QtHostingView(NSHostingView& hosting, ViewClient& client)
    : QtView(hosting, client), hosting_(hosting) {
  build();
}

QtHostingView::~QtHostingView() = default;

void QtHostingView::build() {
  // A value may be set from inside an event of one of the widgets that go.
  if (widgets_) {
    widgets_->root().hide();
    widgets_->root().deleteLater();
  }
  structure_ = structureOf(hosting_.content());
  widgets_ = std::make_unique<DeclarativeWidgets>(hosting_.content(), *this);
  for (QWidget* control : widgets_->controls()) control->installEventFilter(this);
  for (const auto& [place, view] : widgets_->hostedPlaces()) place->installEventFilter(this);
  widgets_->root().lower();
  widgets_->root().show();
  placeRoot();
}

void QtHostingView::refresh() {
  QtView::refresh();
  if (structureOf(hosting_.content()) != structure_) build();
  widgets_->update();
}

void QtHostingView::resizeEvent(QResizeEvent* event) {
  QtView::resizeEvent(event);
  placeRoot();
}

// In the middle across, as high as the window.
void QtHostingView::placeRoot() {
  QWidget& root = widgets_->root();
  const int width = std::min(this->width(), root.maximumWidth());
  root.setGeometry((this->width() - width) / 2, 0, width, height());
}

void QtHostingView::placeHosted(const QWidget& place) {
  for (const auto& [widget, view] : widgets_->hostedPlaces()) {
    if (widget != &place) continue;
    NSHostingView::placeHostedView(*view, qt::fromQt(QRect(place.mapTo(this, QPoint(0, 0)), place.size())));
    if (QWidget* control = controlOf(*view)) followInTabOrder(*control, *widget);
  }
}

// Qt puts nothing after what takes no focus.
void QtHostingView::followInTabOrder(QWidget& control, QWidget& place) {
  place.setFocusPolicy(Qt::TabFocus);
  setTabOrder(&place, &control);
  place.setFocusPolicy(Qt::NoFocus);
}

QWidget* QtHostingView::controlOf(const NSView& hosted) const {
  for (QObject* child : children()) {
    const auto* widget = dynamic_cast<QtView*>(child);
    if (widget && &widget->view() == &hosted) return widget->control();
  }
  return nullptr;
}

bool QtHostingView::eventFilter(QObject* object, QEvent* event) {
  auto* widget = qobject_cast<QWidget*>(object);
  if (event->type() == QEvent::FocusIn) {
    focused_ = widget;
    client().focusWanted(view());
  }
  if (widget && (event->type() == QEvent::Move || event->type() == QEvent::Resize)) placeHosted(*widget);
  return QtView::eventFilter(object, event);
}

}  // namespace vistrel::widgets
