#pragma once

#include <memory>

#include "combine/ObservableObject.h"
#include "combine/Subject.h"
#include "foundation/KeyValueObservable.h"

/// Whether the program starts when the user logs in. The desktop's own list of login jobs is the truth:
/// nothing is kept here. Main thread only.
namespace vistrel::LaunchAtLogin {

/// Asks the desktop, anew on each call.
[[nodiscard]] bool isEnabled();
/// Asks the desktop for it and tells every observer the wanted value, whether or not the desktop obeys.
void setEnabled(bool isEnabled);

/// First the current value, then each one that is written from then on.
[[nodiscard]] AnyPublisher<bool> publisher();

/// The setting as an object that declarative views observe.
class Observable final : public ObservableObject {
 public:
  [[nodiscard]] bool isEnabled() const { return LaunchAtLogin::isEnabled(); }
  void setEnabled(bool isEnabled) { LaunchAtLogin::setEnabled(isEnabled); }
};
[[nodiscard]] const std::shared_ptr<Observable>& sharedObservable();

/// The setting as an object whose value under "isEnabled" can be watched.
class KVO final : public KeyValueObservable {
 public:
  [[nodiscard]] bool isEnabled() const { return LaunchAtLogin::isEnabled(); }
  void setEnabled(bool isEnabled) { LaunchAtLogin::setEnabled(isEnabled); }
};
[[nodiscard]] const std::shared_ptr<KVO>& sharedKVO();

inline constexpr const char* kIsEnabledKey = "isEnabled";

}  // namespace vistrel::LaunchAtLogin
