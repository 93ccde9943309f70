#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QWindow>
#include <optional>

#include "backend/Windows.h"

namespace vistrel::windows {

/// How the window manager keeps windows from the screen that stay open: minimized, on a virtual desktop that
/// was left, or put aside to show the desktop. Main thread only.
class HidingWatch final : public QObject, private QAbstractNativeEventFilter {
  Q_OBJECT
 public:
  HidingWatch();
  ~HidingWatch() override;

  /// None: nothing but other windows keeps it from being seen.
  [[nodiscard]] std::optional<backend::Hiding> hidingOf(const QWindow& window) const;

  [[nodiscard]] bool isDesktopShown() const;
  /// Asks the window manager to bring the windows back, or it would keep a new one from the screen, too.
  void endShownDesktop() const;

  /// Has a window that is not mapped come to the virtual desktop that is seen, wherever it was before.
  void comeAlong(const QWindow& window) const;

 signals:
  /// The answers may be others than before.
  void changed();

 private:
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
  [[nodiscard]] bool leavesWindowsMapped() const;
  [[nodiscard]] bool isOnOtherDesktop(const QWindow& window) const;

  xcb_atom_t desktopShown_ = 0;
  xcb_atom_t currentDesktop_ = 0;
  xcb_atom_t desktop_ = 0;
  xcb_atom_t state_ = 0;
  xcb_atom_t hidden_ = 0;
  xcb_atom_t manager_ = 0;
};

}  // namespace vistrel::windows
