#pragma once

#include <functional>
#include <string>

#include "foundation/NSObject.h"
#include "foundation/NotificationCenter.h"

namespace vistrel {

/// An object whose named values can be watched: it announces each change before and after it. Main thread
/// only.
class KeyValueObservable : public NSObject {
 public:
  enum class Phase { WillChange, DidChange };
  using Observer = std::function<void(Phase)>;

  /// Tells `observer` of both phases of every change under `key`, until the token ends.
  [[nodiscard]] ObservationToken observe(const std::string& key, Observer observer);

  void willChangeValue(const std::string& key) { announce(key, Phase::WillChange); }
  void didChangeValue(const std::string& key) { announce(key, Phase::DidChange); }

 private:
  void announce(const std::string& key, Phase phase);
  NotificationCenter changes_;
};

}  // namespace vistrel
