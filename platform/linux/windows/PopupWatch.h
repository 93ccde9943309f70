#pragma once

#include <QObject>

namespace vistrel::windows {

/// Tells when the last open popup of the program has closed, a menu or a list. While one is open it has the
/// pointer and the keyboard to itself.
class PopupWatch final : public QObject {
  Q_OBJECT
 public:
  PopupWatch();

 signals:
  void closed();

 private:
  bool eventFilter(QObject* object, QEvent* event) override;
};

}  // namespace vistrel::windows
