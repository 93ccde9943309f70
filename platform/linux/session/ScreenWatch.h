#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <vector>

#include "backend/Session.h"
#include "linux/qt/SingleShot.h"

class QScreen;

namespace vistrel::x11 {
class X11Connection;
}

namespace vistrel::session {

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
