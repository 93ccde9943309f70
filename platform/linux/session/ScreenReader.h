#pragma once

#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace vistrel::session {

/// Whether a screen reader runs, by the word of the accessibility bus (`org.a11y.Status`), live. It starts no
/// service and waits for none.
class ScreenReader final : public QObject {
  Q_OBJECT

 public:
  ScreenReader();

  [[nodiscard]] bool isOn() const { return isOn_; }

 private slots:
  void propertiesChanged(const QString& interface, const QVariantMap& values, const QStringList& others);

 private:
  void ask();

  QDBusServiceWatcher service_;
  bool isOn_ = false;
};

}  // namespace vistrel::session
