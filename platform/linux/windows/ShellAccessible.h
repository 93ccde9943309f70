#pragma once

#include <QAccessibleWidget>

#include "linux/windows/Shell.h"

namespace vistrel::windows {

/// A window as screen readers see it. What only the pointer can do to it is an action of it.
class ShellAccessible final : public QAccessibleWidget {
 public:
  explicit ShellAccessible(Shell& shell);

  /// Has every `Shell` be seen like this.
  static void install();

  [[nodiscard]] QStringList actionNames() const override;
  [[nodiscard]] QString localizedActionName(const QString& name) const override;
  void doAction(const QString& name) override;

 private:
  Shell& shell_;
};

}  // namespace vistrel::windows
