#pragma once

#include <functional>
#include <memory>

#include <QObject>

#include "linux/qt/SingleShot.h"

class QWindow;

namespace vistrel::session {

/// Tells when the focus came to one of the program's windows and when it left them all. A grab by another
/// client, during which Qt believes the focus gone, does not count.
class ActivationWatch {
 public:
  struct Handlers {
    std::function<void()> didBecomeActive;
    std::function<void()> willResignActive;
  };
  explicit ActivationWatch(Handlers handlers);

 private:
  void check();
  void checkAfter(std::chrono::milliseconds delay);

  Handlers handlers_;
  bool isActive_ = false;
  bool awaitsConfirmation_ = false;
  std::unique_ptr<qt::SingleShot> recheck_;
  QObject context_;
};

}  // namespace vistrel::session
