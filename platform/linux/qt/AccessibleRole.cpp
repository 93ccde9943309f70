#include "linux/qt/AccessibleRole.h"

#include <QAccessibleWidget>
#include <QVariant>

namespace vistrel::qt {

namespace {

constexpr const char* kProperty = "accessibleRole";

QAccessibleInterface* makeAccessible(const QString& /*className*/, QObject* object) {
  auto* widget = qobject_cast<QWidget*>(object);
  const QVariant role = widget ? widget->property(kProperty) : QVariant();
  return role.isValid() ? new QAccessibleWidget(widget, QAccessible::Role(role.toInt())) : nullptr;
}

}  // namespace

void setAccessibleRole(QWidget& widget, QAccessible::Role role) {
  QAccessible::installFactory(makeAccessible);  // once, however often it is asked for
  widget.setProperty(kProperty, int(role));
}

void setAccessibleTexts(QWidget& widget, const std::string& name, const std::string& description) {
  const QString text = QString::fromStdString(name);
  if (widget.accessibleName() != text) widget.setAccessibleName(text);
  setAccessibleDescription(widget, description);
}

void setAccessibleDescription(QWidget& widget, const std::string& description) {
  const QString text = QString::fromStdString(description);
  if (widget.accessibleDescription() != text) widget.setAccessibleDescription(text);
}

}  // namespace vistrel::qt
