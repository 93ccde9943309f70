#pragma once

#include <QObject>
#include <functional>

namespace vistrel::session {

/// Hears from logind when the computer goes to sleep and when it has woken (`PrepareForSleep`). Nothing comes
/// where no logind runs.
class SleepWatch final : public QObject {
  Q_OBJECT

 public:
  /// Main thread, from the main loop: true before the sleep, false after it.
  explicit SleepWatch(std::function<void(bool isAsleep)> handler);

 private slots:
  void prepareForSleep(bool isAsleep) { handler_(isAsleep); }

 private:
  std::function<void(bool)> handler_;
};

}  // namespace vistrel::session
