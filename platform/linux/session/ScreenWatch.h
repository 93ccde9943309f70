#pragma once

#include <QMargins>
#include <QObject>
#include <QRect>
#include <functional>
#include <memory>
#include <vector>

#include "backend/Session.h"
#include "linux/qt/SingleShot.h"
#include "linux/x11/PanelStruts.h"

class QScreen;

namespace vistrel::x11 {
class X11Connection;
}

namespace vistrel::session {

/// How far panels reach into a screen from its edges; all in pixels. A strip that leaves nothing of the
/// screen belongs to a panel of a screen beyond.
[[nodiscard]] QMargins panelMargins(const QRect& screen, const std::vector<x11::Strut>& struts);

/// The screens, and word of their changes: one for a burst of them, none for a panel that changes its strut.
class ScreenWatch {
 public:
  ScreenWatch(x11::X11Connection& x11, std::function<void()> handler);

  [[nodiscard]] std::vector<backend::Screen> screens();

 private:
  void watch(QScreen* screen);
  void checkSoon();
  void check();

  x11::X11Connection& x11_;
  std::function<void()> handler_;
  std::vector<backend::Screen> known_;
  std::unique_ptr<qt::SingleShot> check_;
  QObject context_;
};

}  // namespace vistrel::session
