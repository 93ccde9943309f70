#include "linux/windows/ContentPointer.h"

#include <QApplication>
#include <QCursor>

namespace vistrel::windows {

bool ContentPointer::isOverContent() const {
  const QWidget* under = QApplication::widgetAt(QCursor::pos());
  return under && (under == &content_ || content_.isAncestorOf(under));
}

void ContentPointer::lookAnew() {
  const bool isInside = isOverContent();
  isInside_ = !isInside;
  tell(isInside);
}

void ContentPointer::contentDidChange() {
  if (std::exchange(isInside_, false)) tell(true);
}

void ContentPointer::tell(bool isInside) {
  if (std::exchange(isInside_, isInside) == isInside) return;
  const auto tell = [this, isInside] { isInside ? client_.pointerDidEnter() : client_.pointerDidLeave(); };
  if (obeys_()) {
    QMetaObject::invokeMethod(&context_, tell, Qt::QueuedConnection);
  } else {
    tell();
  }
}

}  // namespace vistrel::windows
