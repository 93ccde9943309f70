#include "linux/widgets/QtView.h"

#include <QEvent>
#include <QPainter>

#include "avfoundation/AVCaptureVideoPreviewLayer.h"
#include "linux/qt/AccessibleRole.h"
#include "linux/qt/Geometry.h"
#include "linux/qt/Palettes.h"
#include "linux/widgets/Glass.h"

namespace vistrel::widgets {

namespace {

QColor colorOf(const CGColor& color) {
  return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                          static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

}  // namespace

QtView::QtView(NSView& view, ViewClient& client) : view_(view.shared_from_this()), client_(client) {}

QtView::~QtView() = default;

void QtView::refresh() {
  setGeometry(qt::toQt(view_->frame()));
  refreshGlass();
  // One widget of a view has its name, or a screen reader would read it twice.
  QWidget& named = control_ ? *control_ : glass_ ? *glass_ : static_cast<QWidget&>(*this);
  qt::setAccessibleTexts(named, accessibleName(), accessibleHelp());
  if (isHidden() != view_->isHidden() || !testAttribute(Qt::WA_WState_ExplicitShowHide)) {
    setVisible(!view_->isHidden());
  }
  update();
}

std::string QtView::accessibleName() const { return view_->accessibilityLabel(); }

std::string QtView::accessibleHelp() const { return view_->accessibilityHelp(); }

void QtView::refreshGlass() {
  auto layer = std::dynamic_pointer_cast<AVCaptureVideoPreviewLayer>(view_->layer());
  if (!layer || layer->isHidden()) {
    delete std::exchange(glass_, nullptr);
    return;
  }
  if (!glass_) {
    glass_ = new Glass(this);
    glass_->setGeometry(rect());
    glass_->lower();
    glass_->show();
  }
  glass_->setNeutralColor(qt::neutralGlass(view_->effectiveAppearance()));
  glass_->setLayer(std::move(layer));
  glass_->layerDidChange();
}

void QtView::fillWith(QWidget& content) {
  content_ = &content;
  content.setParent(this);
  content.setGeometry(rect());
}

void QtView::setControl(QWidget& control) {
  control_ = &control;
  control.installEventFilter(this);
}

void QtView::paintEvent(QPaintEvent* /*event*/) {
  const auto& layer = view_->layer();
  if (!layer || layer->isHidden() || !layer->backgroundColor()) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(colorOf(*layer->backgroundColor()));
  painter.drawRoundedRect(rect(), layer->cornerRadius(), layer->cornerRadius());
}

void QtView::resizeEvent(QResizeEvent* /*event*/) {
  if (content_) content_->setGeometry(rect());
  if (glass_) glass_->setGeometry(rect());
}

bool QtView::eventFilter(QObject* object, QEvent* event) {
  if (object == control_ && event->type() == QEvent::FocusIn) client_.focusWanted(*view_);
  return QWidget::eventFilter(object, event);
}

}  // namespace vistrel::widgets
