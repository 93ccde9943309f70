#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QObject>

namespace vistrel::windows {

/// Whether the window manager has put every window aside to show the desktop. Not every manager says so of
/// the single window. Main thread only.
class ShownDesktop final : public QObject, private QAbstractNativeEventFilter {
  Q_OBJECT
 public:
  ShownDesktop();
  ~ShownDesktop() override;

  [[nodiscard]] bool isShown() const;
  /// Asks the window manager to bring the windows back, or it would keep a new one from the screen, too.
  void end() const;

 signals:
  void changed();

 private:
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  xcb_atom_t state_ = 0;
};

}  // namespace vistrel::windows
